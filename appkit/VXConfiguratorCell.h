#import <AppKit/AppKit.h>

/* Draws what a Schedule does, in one row of the table: when, what, and what it needs of the computer.
 *
 * The object value is an action summary: a dictionary with the texts "Name", "Action" and "Time" and the boolean
 * numbers "Startup" and "Wake Up". Without one, or with a value of another kind, the cell is empty; an entry that is
 * missing or of another kind is left out. Laid out for rows of 28 points and more; texts are cut with an ellipsis where
 * the width does not do. The images come from the bundle that holds this class. */
@interface VXConfiguratorCell : NSActionCell {
    NSDictionary *_summary;
    BOOL _dimmed;
}

/* Draws like a disabled cell what is turned off, and can be used all the same. */
- (void)setDimmed:(BOOL)dimmed;

/* The summary as one sentence, the needs in words: what assistive tools read. Empty for an empty cell. */
- (NSString *)stringValue;

@end
