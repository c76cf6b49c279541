#import "appkit/VXScheduleTableView.h"

@implementation VXScheduleTableView

- (id<VXScheduleTableKeys>)keyTarget {
    id delegate = [self delegate];
    return [delegate respondsToSelector:@selector(toggleEnabled:)] ? delegate : nil;
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
                [[self keyTarget] deleteSchedule:self];
                return;
        }
    }
    [super keyDown:event];
}

#ifdef GNUSTEP

// Here the framework lets only rows be dragged that are selected when the button goes down.
- (void)mouseDown:(NSEvent *)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    const NSInteger row = [self rowAtPoint:point];
    const bool extending = [event modifierFlags] & (NSShiftKeyMask | NSCommandKeyMask | NSControlKeyMask);
    if (row >= 0 && !extending && [event clickCount] == 1 && ![self isRowSelected:row] && [self mayChangeSelection]) {
        [self selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(row)] byExtendingSelection:NO];
    }
    [super mouseDown:event];
}

- (BOOL)mayChangeSelection {
    id delegate = [self delegate];
    return ![delegate respondsToSelector:@selector(selectionShouldChangeInTableView:)] ||
           [delegate selectionShouldChangeInTableView:self];
}

#endif

@end
