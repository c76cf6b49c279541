#import "appkit/VXConfiguratorCell.h"

#include <algorithm>
#include <cmath>

#include "appkit/Resources.h"
#include "appkit/Strings.h"
#include "appkit/Values.h"
#include "kit/ActionSummary.h"

using namespace quorel;
using namespace quorel::appkit;

namespace {

constexpr CGFloat kMargin = 4;
constexpr CGFloat kGap = 8;
constexpr CGFloat kDotSize = 16;
constexpr NSUInteger kMostCharacters = 300;  // of one text; no row is wide enough for more

/// On one line, and not longer than can be shown.
NSString *oneLine(NSString *text) {
    if ([text length] > kMostCharacters) {
        const NSRange last = [text rangeOfComposedCharacterSequenceAtIndex:kMostCharacters];
        text = [text substringToIndex:last.location];
    }
    NSArray *lines = [text componentsSeparatedByCharactersInSet:[NSCharacterSet newlineCharacterSet]];
    return [lines componentsJoinedByString:@" "];
}

CGFloat widthOf(NSString *text, NSDictionary *attributes) {
    return std::ceil([text sizeWithAttributes:attributes].width);
}

/// The text, or as much of its beginning as fits with an ellipsis. The text system here does not cut by itself.
NSString *fitted(NSString *text, CGFloat width, NSDictionary *attributes) {
    if (widthOf(text, attributes) <= width) return text;
    NSUInteger fits = 0;
    NSUInteger tooMany = [text length];
    NSString *best = @"";
    while (tooMany - fits > 1) {
        const NSUInteger middle = fits + (tooMany - fits) / 2;
        const NSUInteger whole = [text rangeOfComposedCharacterSequenceAtIndex:middle].location;
        NSString *cut = [[text substringToIndex:whole] stringByAppendingString:@"\u2026"];
        if (widthOf(cut, attributes) <= width) {
            fits = middle;
            best = cut;
        } else {
            tooMany = middle;
        }
    }
    return best;
}

NSDictionary *attributesOf(NSFont *font, NSColor *colour) {
    return [NSDictionary
        dictionaryWithObjectsAndKeys:font, NSFontAttributeName, colour, NSForegroundColorAttributeName, nil];
}

}  // namespace

@implementation VXConfiguratorCell

- (id)copyWithZone:(NSZone *)zone {
    // The frameworks copy instance variables as they are.
    VXConfiguratorCell *copy = [super copyWithZone:zone];
    copy->_summary = [_summary retain];
    return copy;
}

- (void)dealloc {
    [_summary release];
    [super dealloc];
}

- (id)objectValue {
    return _summary;
}

- (void)setObjectValue:(id)value {
    NSDictionary *summary = [value isKindOfClass:[NSDictionary class]] ? [value copy] : nil;
    [_summary release];
    _summary = summary;
}

- (NSString *)stringValue {
    NSBundle *bundle = [NSBundle bundleForClass:[VXConfiguratorCell class]];
    return nsString(summary::sentenceOf(valueFromObject(_summary), [bundle](const char *key) {
        return stdString(VXLocalized(nsString(key), bundle));
    }));
}

- (void)setDimmed:(BOOL)dimmed {
    _dimmed = dimmed;
}

- (bool)isFaint {
    return _dimmed || ![self isEnabled];
}

- (NSColor *)colourOtherwise:(NSColor *)usual {
    if ([self isFaint]) return [NSColor disabledControlTextColor];
    if ([self backgroundStyle] == NSBackgroundStyleDark) return [NSColor alternateSelectedControlTextColor];
    return [self isHighlighted] ? [NSColor selectedControlTextColor] : usual;
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView *)view {
    [self drawInteriorWithFrame:frame inView:view];
}

- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView *)view {
    if (!_summary) return;
    const Value shown = valueFromObject(_summary);
    const auto textUnder = [&shown](const char *key) { return oneLine(nsString(shown[key].text())); };
    NSColor *textColour = [self colourOtherwise:[NSColor controlTextColor]];
    NSDictionary *timeStyle = attributesOf([NSFont boldSystemFontOfSize:13], textColour);
    NSDictionary *nameStyle = attributesOf([NSFont systemFontOfSize:12], textColour);
    NSDictionary *actionStyle =
        attributesOf([NSFont systemFontOfSize:10], [self colourOtherwise:[NSColor darkGrayColor]]);
    const bool flipped = [view isFlipped];

    // `top` is measured from the upper edge of the row.
    const auto draw = [&](NSString *text, CGFloat x, CGFloat top, CGFloat width, NSDictionary *style) {
        if (width <= 0 || ![text length]) return;
        text = fitted(text, width, style);
        const CGFloat height = [text sizeWithAttributes:style].height;
        const CGFloat y = flipped ? NSMinY(frame) + top : NSMaxY(frame) - top - height;
        [text drawAtPoint:NSMakePoint(x, std::round(y)) withAttributes:style];
    };
    const auto heightOf = [](NSDictionary *style) { return [@"0" sizeWithAttributes:style].height; };

    CGFloat left = NSMinX(frame) + kMargin;
    CGFloat right = NSMaxX(frame) - kMargin;
    const char *dotName = summary::dotNameOf(shown);
    NSBundle *bundle = [NSBundle bundleForClass:[VXConfiguratorCell class]];
    if (NSImage *dot = dotName ? VXImageNamed(nsString(dotName), bundle) : nil) {
        right -= kDotSize;
        const NSRect place = NSMakeRect(right, std::round(NSMidY(frame) - kDotSize / 2), kDotSize, kDotSize);
        [dot drawInRect:place
                  fromRect:NSZeroRect
                 operation:NSCompositeSourceOver
                  fraction:[self isFaint] ? 0.4 : 1.0
            respectFlipped:YES
                     hints:nil];
        right -= kGap;
    }

    // Names begin below one another, whatever hour stands before them.
    NSString *time = textUnder(summary::kTime);
    if ([time length]) {
        const CGFloat column = widthOf([time length] > 5 ? @"00:00 MM" : @"00:00", timeStyle);
        const CGFloat width = std::min(std::max(column, widthOf(time, timeStyle)), (right - left) / 2);
        draw(time, left, (NSHeight(frame) - heightOf(timeStyle)) / 2, width, timeStyle);
        left += width + kGap;
    }

    NSString *name = textUnder(summary::kName);
    NSString *action = textUnder(summary::kAction);
    const CGFloat nameHeight = heightOf(nameStyle);
    const CGFloat both = nameHeight + ([action length] ? heightOf(actionStyle) : 0);
    const CGFloat top = (NSHeight(frame) - both) / 2;
    draw(name, left, top, right - left, nameStyle);
    draw(action, left, top + nameHeight, right - left, actionStyle);
}

@end
