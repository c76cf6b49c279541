#import <AppKit/AppKit.h>

/*
 * Options views are lines of controls, as wide as the edit sheet offers.
 */

static const CGFloat VXOptionsWidth = 440;
static const CGFloat VXLineHeight = 34;

/* Retained by nobody, as wide as its text. */
NSTextField *VXLabel(NSString *text);

/* Adds the controls from left to right, each centred on a line of that height and as wide as it is; the stretched one
 * takes what the others leave, and nil is none. */
void VXAddLine(NSView *view, CGFloat bottom, CGFloat height, NSArray *controls, NSView *stretched);
