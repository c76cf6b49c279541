#import <AppKit/AppKit.h>

/* What the table's delegate does for the keyboard, and says of a row. */
@protocol VXScheduleTableKeys
- (void)editSchedule:(id)sender;
- (void)deleteSchedule:(id)sender;
- (void)toggleEnabled:(id)sender;
/* What a row does, as a sentence: its tool tip. */
- (NSString *)descriptionOfRow:(NSInteger)row;
@end

/* The schedule table, which can be used without a mouse: arrows select, Space ticks, Return edits, Delete deletes, once
 * for each press. Where the delegate lets nothing be selected, neither mouse nor keyboard selects: arrows scroll.
 * A row need not be selected before it can be dragged; it is once the pointer is a row's height away. */
@interface VXScheduleTableView : NSTableView {
    NSPoint _pressed;             // where the button went down, in the window
    NSTimeInterval _deletedAt;    // when Delete was last pressed
    NSTimeInterval _keyWentUpAt;  // any, the last one
}
@end

/* The headers, with an arrow in that of the column by which the rows are sorted. */
@interface VXScheduleHeaderView : NSTableHeaderView {
    NSInteger _sorted;
    BOOL _ascending;
}

/* Until the rows are loaded again. -1: by none. */
- (void)showSortedBy:(NSInteger)column ascending:(BOOL)ascending;

@end
