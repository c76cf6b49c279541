#import "appkit/OptionControls.h"

#include <algorithm>
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

std::shared_ptr<Retained<NSView>> kept(NSView *view) {
    return std::make_shared<Retained<NSView>>(view);
}

/// Has the button call the action for as long as the result lives.
std::shared_ptr<void> calling(NSButton *button, std::function<void()> action) {
    VXActionTarget *target = [[VXActionTarget alloc] initWithAction:std::move(action)];
    [button setTarget:target];
    [button setAction:@selector(perform:)];
    return {target, [button](id held) {
                [button setTarget:nil];
                [held release];
            }};
}

OptionControl flagControl(NSString *title, std::function<void()> changed) {
    NSButton *box = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [box setButtonType:NSSwitchButton];
    [box setTitle:title];
    [box sizeToFit];
    const auto target = calling(box, std::move(changed));
    return {kept(box), [=](const Value &value) { [box setState:value.intValue() ? NSOnState : NSOffState]; },
            [=]() -> Value { return [box state] != NSOffState; },
            [box, target](bool enabled) { [box setEnabled:enabled]; }};
}

OptionControl numberControl(const Option &option, NSString *toolTip) {
    VXNumberControl *control = [[[VXNumberControl alloc] initWithLeast:option.least most:option.most
                                                               toolTip:toolTip] autorelease];
    return {kept(control), [=](const Value &value) { [control setNumber:value.intValue()]; },
            [=]() -> Value { return [control number]; }, [=](bool enabled) { [control setEnabled:enabled]; }};
}

OptionControl textControl(NSString *toolTip) {
    NSTextField *field = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 0, kFieldHeight)] autorelease];
    [field setToolTip:toolTip];
    return {kept(field), [=](const Value &value) { [field setStringValue:nsString(value.text())]; },
            [=]() -> Value { return stdString([field stringValue]); },
            [=](bool enabled) { [field setEnabled:enabled]; }};
}

void chooseFile(NSTextField *field) {
    NSString *folder = [[field stringValue] stringByDeletingLastPathComponent];
    NSOpenPanel *panel = [NSOpenPanel openPanel];
    [panel setDirectory:[folder isAbsolutePath] ? folder : @"/usr"];
    [panel setCanChooseDirectories:YES];
    [panel setAllowsMultipleSelection:NO];
    if ([panel runModal] == NSOKButton) [field setStringValue:[[panel filenames] objectAtIndex:0]];
}

/// A text, and a button to choose a file by, whose path it becomes.
OptionControl fileControl(NSString *toolTip) {
    NSBundle *bundle = [NSBundle bundleForClass:[VXOptionsContainer class]];
    OptionControl text = textControl(toolTip);
    NSTextField *field = static_cast<NSTextField *>(text.view->get());
    NSButton *button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [button setTitle:VXLocalized(@"Choisir", bundle)];
    [button setToolTip:VXLocalized(@"Choisir une application ou un fichier", bundle)];
    [button sizeToFit];
    const auto target = calling(button, [=] { chooseFile(field); });

    const NSSize size = [button frame].size;
    NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 2 * kGap + size.width, size.height)] autorelease];
    [field setFrame:NSMakeRect(0, (size.height - kFieldHeight) / 2, kGap, kFieldHeight)];
    [field setAutoresizingMask:NSViewWidthSizable];
    [button setFrameOrigin:NSMakePoint(2 * kGap, 0)];
    [button setAutoresizingMask:NSViewMinXMargin];
    [view addSubview:field];
    [view addSubview:button];
    return {kept(view), text.show, text.shown, [field, button, target](bool enabled) {
                [field setEnabled:enabled];
                [button setEnabled:enabled];
            }};
}

OptionControl linesControl(NSString *toolTip) {
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
    return {kept(scroll), [=](const Value &value) { [text setString:nsString(value.text())]; },
            [=]() -> Value { return stdString([text string]); },
            [=](bool enabled) {
                if ([text isEditable] != enabled) [text setEditable:enabled];  // which takes the tool tip away
            }};
}

OptionControl choiceControl(const Option &option, std::string_view language, NSString *toolTip) {
    NSPopUpButton *button = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 100, kFieldHeight)
                                                        pullsDown:NO] autorelease];
    for (const Choice &choice : option.choices)  // the pop-up's own operation would drop an earlier one of that title
        [[button menu] addItemWithTitle:nsString(inLanguage(choice.names, language)) action:NULL keyEquivalent:@""];
    [button setToolTip:toolTip];
    [button sizeToFit];
    return {kept(button),
            [button, choices = option.choices](const Value &value) {
                const auto chosen = std::ranges::find(choices, value.text(), &Choice::value);
                if (chosen != choices.end()) [button selectItemAtIndex:chosen - choices.begin()];
            },
            [button, choices = option.choices]() -> Value {
                const NSInteger index = [button indexOfSelectedItem];
                return index < 0 ? Value() : Value(choices[static_cast<std::size_t>(index)].value);
            },
            [=](bool enabled) { [button setEnabled:enabled]; }};
}

OptionControl timeControl() {
    VXTimeControl *control =
        [[[VXTimeControl alloc] initWithFrame:NSMakeRect(0, 0, kTimeWidth, kFieldHeight + 2)] autorelease];
    [control setTimeZone:wallClockZone()];
    return {kept(control),
            [=](const Value &value) {
                const int minute = minuteOfDay(value.text()).value_or(0);
                [control setDateValue:dateFromCalendarDate({2024, 1, 1, minute / 60, minute % 60, 0})];
            },
            [=]() -> Value {
                const CalendarDate date = calendarDateFromDate([control dateValue]);
                return timeOfDay(60 * date.hour + date.minute);
            },
            [=](bool enabled) { [control setEnabled:enabled]; }};
}

}  // namespace

OptionControl controlOf(const Option &option, std::string_view language, NSString *toolTip,
                        std::function<void()> changed) {
    switch (option.kind) {
        case OptionKind::kFlag:
            return flagControl(nsString(inLanguage(option.label, language)), std::move(changed));
        case OptionKind::kNumber:
            return numberControl(option, toolTip);
        case OptionKind::kText:
            return option.isFile ? fileControl(toolTip) : textControl(toolTip);
        case OptionKind::kLines:
            return linesControl(toolTip);
        case OptionKind::kChoice:
            return choiceControl(option, language, toolTip);
        case OptionKind::kTime:
            break;
    }
    return timeControl();
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
