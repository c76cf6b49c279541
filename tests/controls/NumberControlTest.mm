#import "appkit/VXNumberControl.h"

#include <gtest/gtest.h>

#include <utility>

TEST(NumberControl, BringsWhatIsTypedIntoItsRange) {
    @autoreleasepool {
        [NSApplication sharedApplication];
        VXNumberControl *control = [[[VXNumberControl alloc] initWithLeast:1 most:999 toolTip:@"tip"] autorelease];
        NSTextField *field = [[control subviews] objectAtIndex:0];
        const std::pair<const char *, int> cases[] = {{"30", 30},  {"0", 1}, {"-3", 1},   {"1000", 999},
                                                      {"abc", 42}, {"", 42}, {"12x", 12}, {"99999999999", 999}};
        for (const auto &[typed, number] : cases) {
            [control setNumber:42];
            [field setStringValue:[NSString stringWithUTF8String:typed]];
            EXPECT_EQ([control number], number) << typed;
            EXPECT_EQ([field intValue], number) << typed;
        }
    }
}
