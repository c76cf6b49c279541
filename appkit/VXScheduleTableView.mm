#import "appkit/VXScheduleTableView.h"

#include <cmath>
#include <utility>

#include "appkit/Strings.h"
#include "model/Schedule.h"

namespace {

// The framework does not tell a repeated press from a new one. Of a key that is held down nothing is heard in between,
// or that it went up and down again all but at once.
constexpr NSTimeInterval kNoHandIsFaster = 0.03;

}  // namespace

@implementation VXScheduleHeaderView

- (void)showSortedBy:(NSInteger)column ascending:(BOOL)ascending {
    _sorted = column;
    _ascending = ascending;
    [self setNeedsDisplay:YES];
}

- (void)drawRect:(NSRect)rect {
    [super drawRect:rect];
    if (_sorted < 0 || _sorted >= [[self tableView] numberOfColumns]) return;
    constexpr CGFloat kHalf = 4;
    const NSRect header = [self headerRectOfColumn:_sorted];
    const CGFloat right = NSMaxX(header) - 2;
    const CGFloat middle = std::round(NSMidY(header));
    const CGFloat point = middle + (_ascending ? -kHalf : kHalf) / 2;  // the view is flipped
    const CGFloat foot = middle - (_ascending ? -kHalf : kHalf) / 2;
    NSBezierPath *arrow = [NSBezierPath bezierPath];
    [arrow moveToPoint:NSMakePoint(right - 2 * kHalf, foot)];
    [arrow lineToPoint:NSMakePoint(right, foot)];
    [arrow lineToPoint:NSMakePoint(right - kHalf, point)];
    [arrow closePath];
    [[NSColor headerTextColor] set];
    [arrow fill];
}

@end

@implementation VXScheduleTableView

- (id<VXScheduleTableKeys>)keyTarget {
    id delegate = [self delegate];
    return [delegate respondsToSelector:@selector(toggleEnabled:)] ? delegate : nil;
}

- (void)keyUp:(NSEvent *)event {
    _keyWentUpAt = [event timestamp];
    [super keyUp:event];
}

- (bool)isRepeated:(NSEvent *)press {
    const NSTimeInterval now = [press timestamp];
    const NSTimeInterval previous = std::exchange(_deletedAt, now);
    const bool wentUp = _keyWentUpAt > previous && now - _keyWentUpAt >= kNoHandIsFaster;
    return [press isARepeat] || (previous > 0 && !wentUp);
}

- (void)keyDown:(NSEvent *)event {
    NSString *characters = [event charactersIgnoringModifiers];
    const unichar key = [characters length] ? [characters characterAtIndex:0] : 0;
    const bool plain = !([event modifierFlags] & (NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask));
    if (plain) {
        switch (key) {
            case ' ':
                [[self keyTarget] toggleEnabled:self];
                return;
            case NSCarriageReturnCharacter:
            case NSEnterCharacter:
                [[self keyTarget] editSchedule:self];
                return;
            case NSDeleteCharacter:
            case NSBackspaceCharacter:
            case NSDeleteFunctionKey:
                if (![self isRepeated:event]) [[self keyTarget] deleteSchedule:self];
                return;
        }
    }
#ifdef GNUSTEP
    if (![self mayChangeSelection]) event = [self scrolling:event];
#endif
    [super keyDown:event];
}

/* Rows say what they do, which the pointer asks each of. */
- (void)reloadData {
    [super reloadData];
    [(VXScheduleHeaderView *)[self headerView] showSortedBy:-1 ascending:YES];
    [self removeAllToolTips];
    const NSInteger infos = [self columnWithIdentifier:quorel::appkit::nsString(quorel::schedule_keys::kInfos)];
    if (infos < 0) return;
    for (NSInteger row = 0; row < [self numberOfRows]; ++row) {
        [self addToolTipRect:[self frameOfCellAtColumn:infos row:row]
                       owner:self
                    userData:reinterpret_cast<void *>(row)];
    }
}

- (NSString *)view:(NSView *)view stringForToolTip:(NSToolTipTag)tag point:(NSPoint)point userData:(void *)row {
    return [[self keyTarget] descriptionOfRow:reinterpret_cast<NSInteger>(row)];
}

#ifdef GNUSTEP

// Here the framework lets only rows be dragged that are selected when the button goes down.
- (void)mouseDown:(NSEvent *)event {
    _pressed = [event locationInWindow];
    const NSInteger row = [self rowAtPoint:[self convertPoint:_pressed fromView:nil]];
    const bool extending = [event modifierFlags] & (NSShiftKeyMask | NSCommandKeyMask | NSControlKeyMask);
    if (row >= 0 && !extending && [event clickCount] == 1 && ![self isRowSelected:row] && [self mayChangeSelection]) {
        [self selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(row)] byExtendingSelection:NO];
    }
    [super mouseDown:event];
}

- (CGFloat)wayTo:(NSEvent *)event {
    const NSPoint point = [event locationInWindow];
    return std::hypot(point.x - _pressed.x, point.y - _pressed.y);
}

// The framework begins to drag after four points, which a hand slips in a click.
- (void)dragImage:(NSImage *)image
               at:(NSPoint)place
           offset:(NSSize)offset
            event:(NSEvent *)event
       pasteboard:(NSPasteboard *)pasteboard
           source:(id)source
        slideBack:(BOOL)slideBack {
    const NSPoint begun = [event locationInWindow];
    while ([self wayTo:event] < [self rowHeight]) {
        event = [NSApp nextEventMatchingMask:NSLeftMouseDraggedMask | NSLeftMouseUpMask
                                   untilDate:[NSDate distantFuture]
                                      inMode:NSEventTrackingRunLoopMode
                                     dequeue:YES];
        if ([event type] == NSLeftMouseUp) return;
    }
    place.x += [event locationInWindow].x - begun.x;
    place.y -= [event locationInWindow].y - begun.y;
    [super dragImage:image at:place offset:offset event:event pasteboard:pasteboard source:source slideBack:slideBack];
}

// The framework asks the delegate before the mouse selects, but not before the keyboard or a menu does.

- (BOOL)mayChangeSelection {
    id delegate = [self delegate];
    return ![delegate respondsToSelector:@selector(selectionShouldChangeInTableView:)] ||
           [delegate selectionShouldChangeInTableView:self];
}

- (void)selectAll:(id)sender {
    if ([self mayChangeSelection]) [super selectAll:sender];
}

/* With Control, keys that would select scroll. */
- (NSEvent *)scrolling:(NSEvent *)press {
    return [NSEvent keyEventWithType:[press type]
                            location:[press locationInWindow]
                       modifierFlags:[press modifierFlags] | NSControlKeyMask
                           timestamp:[press timestamp]
                        windowNumber:[press windowNumber]
                             context:[press context]
                          characters:[press characters]
         charactersIgnoringModifiers:[press charactersIgnoringModifiers]
                           isARepeat:[press isARepeat]
                             keyCode:[press keyCode]];
}

#endif

@end
