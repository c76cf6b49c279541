#import <AppKit/AppKit.h>

/* What the table's delegate does for the keyboard. */
@protocol VXScheduleTableKeys
- (void)editSchedule:(id)sender;
- (void)deleteSchedule:(id)sender;
- (void)toggleEnabled:(id)sender;
@end

/* The schedule table, which can be used without a mouse: arrows select, Space ticks, Return edits, Delete deletes.
 * A row need not be selected before it can be dragged. */
@interface VXScheduleTableView : NSTableView
@end
