#import "modules/VXPlugIn.h"

@class VXIdleOptionsView;

/* An action that ends the use of the computer, and can wait until nobody uses it. A computer that is off or asleep is
 * left so: neither flag can be chosen. */
@interface VXIdlePlugIn : VXPlugIn {
    VXIdleOptionsView *_idleView;
}

- (int)idleMinutes;
/* nil where the action does not wait. */
- (NSString *)actionString;

@end
