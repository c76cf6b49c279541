#import <Quorel/VXPrefPanePlugInProtocol.h>

#include "modules/Parameters.h"

using namespace quorel::parameters;

/* Has the computer running at the given time. Waking up is what it is; that it also starts a computer which is off is
 * the user's choice. */
@interface VXWakeUpPlugIn : NSObject <VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> {
    NSMutableDictionary *_parameters;
}
@end

@implementation VXWakeUpPlugIn

+ (BOOL)initializeClass:(NSBundle *)bundle {
    return bundle != nil;
}

+ (void)terminateClass {
}

- (id)init {
    if ((self = [super init])) [self setParameters:nil];
    return self;
}

- (void)dealloc {
    [_parameters release];
    [super dealloc];
}

- (BOOL)isBaseModule {
    return YES;
}

- (NSString *)pluginIdentifier {
    return @"com.quorel.plugin.WakeUp";
}

- (NSString *)pluginName {
    return VXLocalized(@"Reveil", self);
}

- (void)loadNib {
}

- (NSView *)setupView {
    return nil;
}

- (BOOL)needsWakeUp {
    return YES;
}

- (void)setNeedsWakeUp:(BOOL)needs {
}

- (BOOL)needsWakeUpByDefault {
    return YES;
}

- (BOOL)needsStartup {
    return [[_parameters objectForKey:VXKey(kNeedsStartup)] boolValue];
}

- (void)setNeedsStartup:(BOOL)needs {
    [_parameters setObject:@(static_cast<bool>(needs)) forKey:VXKey(kNeedsStartup)];
}

- (BOOL)needsStartupByDefault {
    return NO;
}

- (NSDictionary *)defaultParameters {
    return @{VXKey(kNeedsStartup) : @(false), VXKey(kNeedsWakeUp) : @(true)};
}

- (NSDictionary *)parameters {
    return [[_parameters copy] autorelease];
}

- (void)setParameters:(NSDictionary *)parameters {
    NSMutableDictionary *own = VXMutableParameters(parameters);
    [own setObject:@(VXFlagParameter(own, VXKey(kNeedsStartup), false)) forKey:VXKey(kNeedsStartup)];
    [own setObject:@(true) forKey:VXKey(kNeedsWakeUp)];
    [_parameters release];
    _parameters = own;
}

- (void)fillSetupInterfaceFromParameters {
}

- (void)fillParametersFromSetupInterface {
}

- (NSString *)actionString {
    return VXLocalized([self needsStartup] ? @"Demarre ou reveille l'ordinateur" : @"Reveille l'ordinateur", self);
}

@end
