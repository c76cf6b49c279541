#include "modules/Parameters.h"
#import "modules/VXPlugIn.h"

using namespace quorel::parameters;

/* Has the computer running at the given time. Waking up is what it is; that it also starts a computer which is off is
 * the user's choice. */
@interface VXWakeUpPlugIn : VXPlugIn
@end

@implementation VXWakeUpPlugIn

- (void)complete:(NSMutableDictionary *)parameters {
    [super complete:parameters];
    [parameters setObject:@(true) forKey:VXKey(kNeedsWakeUp)];
}

- (NSString *)actionString {
    return VXLocalized([self needsStartup] ? @"Demarre ou reveille l'ordinateur" : @"Reveille l'ordinateur", self);
}

@end
