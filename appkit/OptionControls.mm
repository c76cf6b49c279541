#import "appkit/OptionControls.h"

#include <utility>

#import "appkit/ActionTarget.h"
#include "appkit/CalendarDates.h"
#include "appkit/Resources.h"
#include "appkit/Strings.h"
#import "appkit/VXNumberControl.h"
#import "appkit/VXOptionsContainer.h"
#import "appkit/VXTimeControl.h"
#include "model/TimeOfDay.h"

/* Lines are ended by Return, which a button has elsewhere; Tab is the keyboard's way on, as elsewhere. */
@interface VXLinesView : NSTextView
@end

@implementation VXLinesView

- (BOOL)performKeyEquivalent:(NSEvent *)event {
    if ([[self window] firstResponder] != self || ![[event characters] isEqual:@"\r"]) return NO;
    [self insertNewline:nil];
    return YES;
}

- (void)insertTab:(id)sender {
    [[self window] selectKeyViewFollowingView:self];
}

- (void)insertBacktab:(id)sender {
    [[self window] selectKeyViewPrecedingView:self];
}

@end

namespace quorel::appkit {

namespace {

constexpr CGFloat kFieldHeight = 22;
constexpr CGFloat kLinesHeight = 60;
constexpr CGFloat kGap = 6;
constexpr CGFloat kTimeWidth = 150;

class FlagControl : public OptionControl {
public:
    FlagControl(NSButton *box, NSString *title, std::function<void()> changed)
        : OptionControl(box), _box(box), _target([[VXActionTarget alloc] initWithAction:std::move(changed)]) {
        [box setButtonType:NSSwitchButton];
        [box setTitle:title];
        [box setTarget:_target];
        [box setAction:@selector(perform:)];
        [box sizeToFit];
    }
    ~FlagControl() override {
        [_box setTarget:nil];
        [_target release];
    }
    FlagControl(const FlagControl &) = delete;
    void show(const Value &value) override { [_box setState:value.intValue() ? NSOnState : NSOffState]; }
    Value shown() override { return [_box state] != NSOffState; }
    void setEnabled(bool enabled) override { [_box setEnabled:enabled]; }

private:
    NSButton *_box;
    VXActionTarget *_target;
};

class NumberControl : public OptionControl {
public:
    explicit NumberControl(VXNumberControl *control) : OptionControl(control), _control(control) {}
    void show(const Value &value) override { [_control setNumber:value.intValue()]; }
    Value shown() override { return [_control number]; }
    void setEnabled(bool enabled) override { [_control setEnabled:enabled]; }

private:
    VXNumberControl *_control;
};

class TextControl : public OptionControl {
public:
    explicit TextControl(NSTextField *field) : OptionControl(field), _field(field) {}
    void show(const Value &value) override { [_field setStringValue:nsString(value.text())]; }
    Value shown() override { return stdString([_field stringValue]); }
    void setEnabled(bool enabled) override { [_field setEnabled:enabled]; }

private:
    NSTextField *_field;
};

/// A text, and a button to choose a file by, whose path it becomes.
class FileControl : public OptionControl {
public:
    FileControl(NSView *view, NSTextField *field, NSButton *button)
        : OptionControl(view),
          _field(field),
          _button(button),
          _target([[VXActionTarget alloc] initWithAction:[this] { choose(); }]) {
        [button setTarget:_target];
        [button setAction:@selector(perform:)];
    }
    ~FileControl() override {
        [_button setTarget:nil];
        [_target release];
    }
    FileControl(const FileControl &) = delete;
    void show(const Value &value) override { [_field setStringValue:nsString(value.text())]; }
    Value shown() override { return stdString([_field stringValue]); }
    void setEnabled(bool enabled) override {
        [_field setEnabled:enabled];
        [_button setEnabled:enabled];
    }

private:
    void choose() {
        NSString *folder = [[_field stringValue] stringByDeletingLastPathComponent];
        NSOpenPanel *panel = [NSOpenPanel openPanel];
        [panel setDirectory:[folder isAbsolutePath] ? folder : @"/usr"];
        [panel setCanChooseDirectories:YES];
        [panel setAllowsMultipleSelection:NO];
        if ([panel runModal] == NSOKButton) [_field setStringValue:[[panel filenames] objectAtIndex:0]];
    }

    NSTextField *_field;
    NSButton *_button;
    VXActionTarget *_target;
};

class LinesControl : public OptionControl {
public:
    LinesControl(NSScrollView *scroll, VXLinesView *text) : OptionControl(scroll), _text(text) {}
    void show(const Value &value) override { [_text setString:nsString(value.text())]; }
    Value shown() override { return stdString([_text string]); }
    void setEnabled(bool enabled) override {
        if ([_text isEditable] != enabled) [_text setEditable:enabled];  // which takes the tool tip away
    }

private:
    VXLinesView *_text;
};

class ChoiceControl : public OptionControl {
public:
    ChoiceControl(NSPopUpButton *button, const std::vector<Choice> &choices)
        : OptionControl(button), _button(button), _choices(choices) {}
    void show(const Value &value) override {
        for (std::size_t i = 0; i < _choices.size(); ++i)
            if (_choices[i].value == value.text()) [_button selectItemAtIndex:static_cast<NSInteger>(i)];
    }
    Value shown() override {
        const NSInteger index = [_button indexOfSelectedItem];
        return index < 0 ? Value() : Value(_choices[static_cast<std::size_t>(index)].value);
    }
    void setEnabled(bool enabled) override { [_button setEnabled:enabled]; }

private:
    NSPopUpButton *_button;
    const std::vector<Choice> _choices;
};

class TimeControl : public OptionControl {
public:
    explicit TimeControl(VXTimeControl *control) : OptionControl(control), _control(control) {
        [control setTimeZone:wallClockZone()];
    }
    void show(const Value &value) override {
        const int minute = minuteOfDay(value.text()).value_or(0);
        CalendarDate date{2024, 1, 1};
        date.hour = minute / 60;
        date.minute = minute % 60;
        [_control setDateValue:dateFromCalendarDate(date)];
    }
    Value shown() override {
        const CalendarDate date = calendarDateFromDate([_control dateValue]);
        return timeOfDay(60 * date.hour + date.minute);
    }
    void setEnabled(bool enabled) override { [_control setEnabled:enabled]; }

private:
    VXTimeControl *_control;
};

NSTextField *fieldOf(NSString *toolTip) {
    NSTextField *field = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 0, kFieldHeight)] autorelease];
    [field setToolTip:toolTip];
    return field;
}

std::unique_ptr<OptionControl> fileControl(NSString *toolTip) {
    NSBundle *bundle = [NSBundle bundleForClass:[VXOptionsContainer class]];
    NSTextField *field = fieldOf(toolTip);
    NSButton *button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [button setTitle:VXLocalized(@"Choisir", bundle)];
    [button setToolTip:VXLocalized(@"Choisir une application ou un fichier", bundle)];
    [button sizeToFit];
    const CGFloat width = NSWidth([button frame]);
    const CGFloat height = NSHeight([button frame]);
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 2 * kGap + width, height)] autorelease];
    [field setFrame:NSMakeRect(0, (height - kFieldHeight) / 2, kGap, kFieldHeight)];
    [field setAutoresizingMask:NSViewWidthSizable];
    [button setFrameOrigin:NSMakePoint(2 * kGap, 0)];
    [button setAutoresizingMask:NSViewMinXMargin];
    [view addSubview:field];
    [view addSubview:button];
    return std::make_unique<FileControl>(view, field, button);
}

std::unique_ptr<OptionControl> linesControl(NSString *toolTip) {
    NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 100, kLinesHeight)] autorelease];
    [scroll setBorderType:NSBezelBorder];
    [scroll setHasVerticalScroller:YES];
    [scroll setAutohidesScrollers:YES];
    VXLinesView *text = [[[VXLinesView alloc] initWithFrame:NSZeroRect] autorelease];
    [text setRichText:NO];
    [text setAutoresizingMask:NSViewWidthSizable];
    [text setToolTip:toolTip];
    [scroll setDocumentView:text];
    [text setFrame:NSMakeRect(0, 0, [scroll contentSize].width, [scroll contentSize].height)];
    return std::make_unique<LinesControl>(scroll, text);
}

std::unique_ptr<OptionControl> choiceControl(const Option &option, std::string_view language, NSString *toolTip) {
    NSPopUpButton *button = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 100, kFieldHeight)
                                                        pullsDown:NO] autorelease];
    for (const Choice &choice : option.choices)  // the pop-up's own operation would drop an earlier one of that title
        [[button menu] addItemWithTitle:nsString(inLanguage(choice.names, language)) action:NULL keyEquivalent:@""];
    [button setToolTip:toolTip];
    [button sizeToFit];
    return std::make_unique<ChoiceControl>(button, option.choices);
}

}  // namespace

std::unique_ptr<OptionControl> controlOf(const Option &option, std::string_view language, NSString *toolTip,
                                         std::function<void()> changed) {
    switch (option.kind) {
        case OptionKind::kFlag: {
            NSButton *box = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
            return std::make_unique<FlagControl>(box, nsString(inLanguage(option.label, language)), std::move(changed));
        }
        case OptionKind::kNumber:
            return std::make_unique<NumberControl>([[[VXNumberControl alloc] initWithLeast:option.least
                                                                                      most:option.most
                                                                                   toolTip:toolTip] autorelease]);
        case OptionKind::kText:
            if (option.isFile) return fileControl(toolTip);
            return std::make_unique<TextControl>(fieldOf(toolTip));
        case OptionKind::kLines:
            return linesControl(toolTip);
        case OptionKind::kChoice:
            return choiceControl(option, language, toolTip);
        case OptionKind::kTime:
            break;
    }
    return std::make_unique<TimeControl>(
        [[[VXTimeControl alloc] initWithFrame:NSMakeRect(0, 0, kTimeWidth, kFieldHeight + 2)] autorelease]);
}

bool isWide(const Option &option) {
    return option.kind == OptionKind::kText || option.kind == OptionKind::kLines;
}

NSTextField *labelOf(NSString *text) {
    NSTextField *label = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [label setStringValue:text];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label sizeToFit];
    return label;
}

}  // namespace quorel::appkit
