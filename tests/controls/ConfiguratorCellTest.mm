#include "appkit/VXConfiguratorCell.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/* A row with room around it, where nothing may be drawn. */
@interface RowView : NSView {
@public
    NSCell *cell;
    BOOL flipped;
}
@end

static const NSRect kRow = {{20, 20}, {260, 28}};

@implementation RowView
- (BOOL)isFlipped {
    return flipped;
}
- (void)drawRect:(NSRect)rect {
    [[NSColor whiteColor] set];
    NSRectFill([self bounds]);
    [cell drawWithFrame:kRow inView:self];
}
@end

namespace {

class ConfiguratorCell : public testing::Test {
protected:
    static void SetUpTestSuite() { [NSApplication sharedApplication]; }
    ConfiguratorCell() { cell = [[VXConfiguratorCell alloc] initTextCell:@""]; }
    ~ConfiguratorCell() override {
        [cell release];
        [pool drain];
    }

    static NSMutableDictionary *summary(bool startup, bool wakeUp) {
        return [NSMutableDictionary dictionaryWithObjectsAndKeys:@"Veille", @"Name", @"apr\u00e8s 15 min", @"Action",
                                                                 @"23:00", @"Time", @(startup), @"Startup", @(wakeUp),
                                                                 @"Wake Up", nil];
    }

    /// What a view of 300 by 68 points shows with the cell in kRow.
    NSBitmapImageRep *draw(bool flipped = true) {
        const NSRect bounds = NSMakeRect(0, 0, 300, 68);
        NSWindow *window = [[[NSWindow alloc] initWithContentRect:bounds
                                                        styleMask:NSBorderlessWindowMask
                                                          backing:NSBackingStoreBuffered
                                                            defer:NO] autorelease];
        [window setReleasedWhenClosed:NO];
        RowView *view = [[[RowView alloc] initWithFrame:bounds] autorelease];
        view->cell = cell;
        view->flipped = flipped;
        [window setContentView:view];
        [window orderFront:nil];
        [window display];
        [view lockFocus];
        NSBitmapImageRep *shown = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:bounds] autorelease];
        [view unlockFocus];
        [window close];
        return shown;
    }

    /// Dots that are not white, in the whole view or in a part of it, counted from the upper left.
    static int inked(NSBitmapImageRep *shown, NSRect part) {
        int count = 0;
        for (int y = static_cast<int>(NSMinY(part)); y < NSMaxY(part); ++y) {
            for (int x = static_cast<int>(NSMinX(part)); x < NSMaxX(part); ++x) {
                NSColor *colour = [[shown colorAtX:x y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
                if ([colour redComponent] + [colour greenComponent] + [colour blueComponent] < 2.9) ++count;
            }
        }
        return count;
    }
    static int inked(NSBitmapImageRep *shown) { return inked(shown, NSMakeRect(0, 0, 300, 68)); }

    std::string text() const { return [[cell stringValue] UTF8String]; }

    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    VXConfiguratorCell *cell;
};

TEST_F(ConfiguratorCell, SaysTheSummaryInOneSentence) {
    [cell setObjectValue:summary(false, false)];
    EXPECT_EQ(text(), "23:00, Veille, après 15 min");
    [cell setObjectValue:summary(true, true)];
    EXPECT_EQ(text(), "23:00, Veille, après 15 min, demarre l'ordinateur, reveille l'ordinateur");

    NSMutableDictionary *odd = summary(true, false);
    [odd setObject:@[ @"not a text" ] forKey:@"Name"];
    [odd setObject:@"not a number" forKey:@"Startup"];
    [odd removeObjectForKey:@"Action"];
    [cell setObjectValue:odd];
    EXPECT_EQ(text(), "23:00");
}

TEST_F(ConfiguratorCell, IsEmptyWithoutASummary) {
    const std::vector<id> values = { nil, @"text", @(7), @[], [NSNull null], @{} };
    for (id value : values) {
        [cell setObjectValue:summary(true, true)];
        [cell setObjectValue:value];
        EXPECT_EQ(text(), "");
        EXPECT_EQ(inked(draw()), 0) << [[value description] UTF8String];
    }
}

TEST_F(ConfiguratorCell, ShowsByAnImageOfItsOwnWhatTheActionNeeds) {
    const NSRect right = NSMakeRect(258, 20, 22, 28);
    std::vector<NSData *> shown;
    for (const auto &[startup, wakeUp] : {std::pair(false, false), {true, false}, {false, true}, {true, true}}) {
        [cell setObjectValue:summary(startup, wakeUp)];
        NSBitmapImageRep *row = draw();
        EXPECT_EQ(inked(row, right) > 50, startup || wakeUp);
        shown.push_back([row TIFFRepresentation]);
    }
    for (std::size_t a = 0; a < shown.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) EXPECT_FALSE([shown[a] isEqual:shown[b]]) << a << " and " << b;
    }
}

TEST_F(ConfiguratorCell, StaysInsideItsRowWhateverTheTexts) {
    NSString *endless = [@"" stringByPaddingToLength:200000 withString:@"wide \U0001F4BB%@\n" startingAtIndex:0];
    NSMutableDictionary *value = summary(true, true);
    for (NSString *key in @[ @"Name", @"Action", @"Time" ]) [value setObject:endless forKey:key];
    [cell setObjectValue:value];
    for (const bool flipped : {true, false}) {
        NSBitmapImageRep *shown = draw(flipped);
        const int inside = inked(shown, NSMakeRect(20, 20, 260, 28));
        EXPECT_GT(inside, 500);
        EXPECT_EQ(inked(shown), inside);
    }
}

TEST_F(ConfiguratorCell, CopiesOwnTheirValue) {
    [cell setObjectValue:summary(false, false)];
    VXConfiguratorCell *copy = [[cell copy] autorelease];
    [cell setObjectValue:nil];
    EXPECT_STREQ([[copy stringValue] UTF8String], "23:00, Veille, après 15 min");
}

}  // namespace
