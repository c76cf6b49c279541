#import "modules/Idle/VXIdlePlugIn.h"
#include "modules/Parameters.h"

/* Puts the computer to sleep, at once or when it has not been used for a while. */
@interface VXSleepPlugIn : VXIdlePlugIn
@end

@implementation VXSleepPlugIn

- (NSString *)actionString {
    NSString *idle = [super actionString];
    return idle ? idle : VXLocalized(@"Mise en veille immediate", self);
}

@end
