#include "appkit/VXTimeControl.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <string>

static int beeps = 0;

// In the place of the display server's.
static void countBeep(id, SEL) {
    ++beeps;
}

/* Counts what arrives of the actions. */
@interface Presses : NSObject {
@public
    int saved;
    int cancelled;
    VXTimeControl *control;
    NSDate *savedDate;
}
@end

@implementation Presses
- (void)save:(id)sender {
    if (![control commitEditing]) return;
    ++saved;
    [savedDate release];
    savedDate = [[control dateValue] retain];
}
- (void)cancel:(id)sender {
    ++cancelled;
}
- (void)dealloc {
    [savedDate release];
    [super dealloc];
}
@end

namespace {

constexpr const char *kTab = "\t";
constexpr const char *kBackTab = "\031";
constexpr const char *kUp = "\uF700";
constexpr const char *kDown = "\uF701";

/// A sheet in small: a field before the control, one behind it, the two buttons.
class TimeControl : public testing::Test {
protected:
    static void SetUpTestSuite() {
        [[NSApplication sharedApplication] finishLaunching];
        class_replaceMethod([GSCurrentServer() class], @selector(beep),
                            reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(countBeep)), "v@:");
    }

    TimeControl() {
        window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 300, 160)
                                             styleMask:NSTitledWindowMask
                                               backing:NSBackingStoreBuffered
                                                 defer:NO];
        [window setReleasedWhenClosed:NO];
        presses = [[Presses alloc] init];
        before = add([[NSTextField alloc] initWithFrame:NSMakeRect(10, 120, 80, 22)]);
        control = add([[VXTimeControl alloc] initWithFrame:NSMakeRect(10, 80, 160, 24)]);
        behind = add([[NSTextField alloc] initWithFrame:NSMakeRect(10, 40, 80, 22)]);
        addButton(@"\033", @selector(cancel:));
        addButton(@"\r", @selector(save:));
        [before setNextKeyView:control];
        [control setNextKeyView:behind];
        [behind setNextKeyView:before];
        presses->control = control;
        [window makeKeyAndOrderFront:nil];
        waitForKeyboard();
        [window makeFirstResponder:before];
        beeps = 0;
    }
    ~TimeControl() override {
        [window close];
        [window release];
        [presses release];
        [pool drain];
    }

    void waitForKeyboard() {
        NSDate *end = [NSDate dateWithTimeIntervalSinceNow:10];
        while (!([window isKeyWindow] && [NSApp isActive]) && [end timeIntervalSinceNow] > 0) {
            NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                untilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]
                                                   inMode:NSDefaultRunLoopMode
                                                  dequeue:YES];
            if (event) [NSApp sendEvent:event];
        }
        ASSERT_TRUE([window isKeyWindow] && [NSApp isActive]);
    }

    template <class ViewType>
    ViewType *add(ViewType *view) {
        [[window contentView] addSubview:view];
        return [view autorelease];
    }
    void addButton(NSString *key, SEL action) {
        NSButton *button = add([[NSButton alloc] initWithFrame:NSMakeRect(200, 5, 80, 26)]);
        [button setKeyEquivalent:key];
        [button setTarget:presses];
        [button setAction:action];
    }

    /// Each character is a key stroke.
    void type(const char *keys) {
        NSString *all = [NSString stringWithUTF8String:keys];
        for (NSUInteger i = 0; i < [all length]; ++i) {
            NSString *key = [all substringWithRange:NSMakeRange(i, 1)];
            NSEvent *event = [NSEvent keyEventWithType:NSKeyDown
                                              location:NSZeroPoint
                                         modifierFlags:[key isEqual:@"\031"] ? NSShiftKeyMask : 0
                                             timestamp:0
                                          windowNumber:[window windowNumber]
                                               context:nil
                                            characters:key
                           charactersIgnoringModifiers:key
                                             isARepeat:NO
                                               keyCode:0];
            [NSApp sendEvent:event];
        }
    }

    static NSDate *date(int hour, int minute) {
        return [NSCalendarDate dateWithYear:2024
                                      month:2
                                        day:29
                                       hour:static_cast<NSUInteger>(hour)
                                     minute:static_cast<NSUInteger>(minute)
                                     second:42
                                   timeZone:[NSTimeZone localTimeZone]];
    }
    static std::string format(NSDate *of) {
        return [[of descriptionWithCalendarFormat:@"%Y-%m-%d %H:%M:%S" timeZone:[NSTimeZone localTimeZone]
                                           locale:nil] UTF8String];
    }
    std::string value() const { return format([control dateValue]); }
    /// What the day of the test shows at this time.
    static std::string at(const char *time) { return std::string("2024-02-29 ") + time + ":42"; }

    /// The texts of the fields, and the one with the keyboard in brackets.
    std::string shown() const {
        std::string all;
        for (NSView *each in [control subviews]) {
            if (![each isKindOfClass:[NSTextField class]]) continue;
            NSText *editor = [(NSTextField *)each currentEditor];
            NSString *text =
                editor ? [NSString stringWithFormat:@"[%@]", [editor string]] : [(NSTextField *)each stringValue];
            all += [text UTF8String];
        }
        return all;
    }

    /// From the field before the control: what is typed, what then is shown and is the value.
    struct Case {
        const char *keys;
        const char *shown;
        const char *time;
        int beeps;
    };
    void tryAll(int hour, int minute, std::initializer_list<Case> cases) {
        for (const Case &each : cases) {
            SCOPED_TRACE(std::string("typed ") + each.keys);
            [window makeFirstResponder:before];
            [control setDateValue:date(hour, minute)];
            beeps = 0;
            type(kTab);
            type(each.keys);
            EXPECT_EQ(shown(), each.shown);
            EXPECT_EQ(beeps, each.beeps);
            EXPECT_EQ(value(), at(each.time));
        }
    }

    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSWindow *window;
    Presses *presses;
    NSTextField *before;
    VXTimeControl *control;
    NSTextField *behind;
};

using TwelveHours = TimeControl;

// On this day of Paris no clock shows half past two.
TEST_F(TimeControl, KeepsAnHourThatTheLocalZoneSkipsWhenGivenAZoneWithoutSuch) {
    NSTimeZone *zone = [NSTimeZone timeZoneForSecondsFromGMT:0];
    [control setTimeZone:zone];
    [control setDateValue:[NSCalendarDate dateWithYear:2024 month:3 day:31 hour:1 minute:30 second:0 timeZone:zone]];
    type("\t2\t");
    NSString *text = [[control dateValue] descriptionWithCalendarFormat:@"%d %H:%M" timeZone:zone locale:nil];
    EXPECT_STREQ([text UTF8String], "31 02:30");
}

TEST_F(TimeControl, IsPassedThroughByTabInBothDirections) {
    [control setDateValue:date(23, 5)];
    type("\t\t\t");
    EXPECT_TRUE([behind currentEditor]);
    type(kBackTab);
    EXPECT_EQ(shown(), "23:[05]");
    type(kBackTab);
    EXPECT_EQ(shown(), "[23]:05");
    type(kBackTab);
    EXPECT_TRUE([before currentEditor]);
    [window makeFirstResponder:control];
    EXPECT_EQ(shown(), "[23]:05");
}

TEST_F(TimeControl, TakesWhatIsTypedAndRefusesTheImpossible) {
    tryAll(23, 58,
           {{"7\t", "07:[58]", "07:58", 0},
            {"\t3\t", "23:03", "23:03", 0},
            {" 9\t", "09:[58]", "09:58", 0},
            {"75\t", "[23]:58", "23:58", 1},
            {"ab\t", "[23]:58", "23:58", 1},
            {"007\t", "[23]:58", "23:58", 1},
            {"\177\t", "[23]:58", "23:58", 1},
            {"8\t60\t", "08:[58]", "08:58", 1},
            {"99\031", "[23]:58", "23:58", 1}});
}

TEST_F(TimeControl, StepsWithinTheFieldWithTheArrowKeys) {
    tryAll(23, 59,
           {{kUp, "[00]:59", "00:59", 0},
            {"\t\uF700", "23:[00]", "23:00", 0},
            {"0\uF701", "[23]:59", "23:59", 0},
            {"9\uF700", "[10]:59", "10:59", 0},
            {"99\uF700", "[23]:59", "23:59", 1}});
    [control setDateValue:date(0, 0)];
    [window makeFirstResponder:control];
    type(kDown);
    EXPECT_EQ(shown(), "[23]:00");
}

TEST_F(TimeControl, HasAStepperForTheFieldLastUsed) {
    [control setDateValue:date(10, 10)];
    NSStepper *stepper = [[control subviews] lastObject];
    ASSERT_TRUE([stepper isKindOfClass:[NSStepper class]]);
    const auto step = [&](int by) {
        [stepper setIntValue:by];
        [stepper sendAction:[stepper action] to:[stepper target]];
    };
    step(1);
    EXPECT_EQ(shown(), "11:10");
    type("\t\t7");
    step(-1);
    EXPECT_EQ(shown(), "11:[06]");
    type("\t");
    step(-1);
    step(-1);
    EXPECT_EQ(shown(), "11:04");
    EXPECT_TRUE([behind currentEditor]);
}

TEST_F(TimeControl, LeavesReturnAndEscapeToTheButtonsButSavesNothingImpossible) {
    [control setDateValue:date(10, 10)];
    type("\t75\r");
    EXPECT_EQ(presses->saved, 0);
    EXPECT_EQ(shown(), "[10]:10");
    EXPECT_EQ(beeps, 1);
    type("9\r");
    EXPECT_EQ(presses->saved, 1);
    EXPECT_EQ(format(presses->savedDate), at("09:10"));
    type("99\033");
    EXPECT_EQ(presses->cancelled, 1);
}

TEST_F(TwelveHours, ShowsAndTakesHalvesOfTheDay) {
    [control setDateValue:date(0, 30)];
    EXPECT_EQ(shown(), "12:30AM");
    tryAll(23, 58,
           {{"7\t", "07:[58]PM", "19:58", 0},
            {"13\t", "01:[58]PM", "13:58", 0},
            {"0\t", "12:[58]AM", "00:58", 0},
            {"24\t", "[11]:58PM", "23:58", 1},
            {kUp, "[12]:58AM", "00:58", 0},
            {"\t\ta\t", "11:58AM", "11:58", 0},
            {"\t\tpM\t", "11:58PM", "23:58", 0},
            {"\t\tm\t", "11:58[PM]", "23:58", 1},
            {"\t\t\uF701", "11:58[AM]", "11:58", 0},
            {"12\t\ta\t", "12:58AM", "00:58", 0}});
    EXPECT_TRUE([behind currentEditor]);
}

}  // namespace
