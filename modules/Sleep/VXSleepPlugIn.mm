#import <Quorel/VXPrefPanePlugInProtocol.h>

#include <algorithm>

#include "modules/Parameters.h"
#include "modules/Sleep/VXSleepOptionsView.h"

using namespace quorel::parameters;

/* Puts the computer to sleep, at once or when it has not been used for a while. A computer that is off or asleep is
 * left so: neither flag can be chosen. */
@interface VXSleepPlugIn : NSObject <VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> {
    NSMutableDictionary *_parameters;
    VXSleepOptionsView *_setupView;
}
@end

@implementation VXSleepPlugIn

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
    [_setupView release];
    [super dealloc];
}

- (BOOL)isBaseModule {
    return YES;
}

- (NSString *)pluginIdentifier {
    return @"com.quorel.plugin.Sleep";
}

- (NSString *)pluginName {
    return VXLocalized(@"Veille", self);
}

- (void)loadNib {
    if (_setupView) return;
    _setupView =
        [[VXSleepOptionsView alloc] initWithCheckBoxTitle:VXLocalized(@"Seulement apres une inactivite de", self)
                                                     unit:VXLocalized(@"minutes", self)
                                                  toolTip:VXLocalized(@"Duree d'inactivite", self)];
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _setupView;
}

- (BOOL)needsWakeUp {
    return NO;
}

- (void)setNeedsWakeUp:(BOOL)needs {
}

- (BOOL)needsWakeUpByDefault {
    return NO;
}

- (BOOL)needsStartup {
    return NO;
}

- (void)setNeedsStartup:(BOOL)needs {
}

- (BOOL)needsStartupByDefault {
    return NO;
}

- (NSDictionary *)defaultParameters {
    return @{
        VXKey(kNeedsStartup) : @(false),
        VXKey(kNeedsWakeUp) : @(false),
        VXKey(kOnlyWhenIdle) : @(false),
        VXKey(kIdleMinutes) : @(kDefaultIdleMinutes)
    };
}

- (NSDictionary *)parameters {
    return [[_parameters copy] autorelease];
}

- (void)setParameters:(NSDictionary *)parameters {
    NSMutableDictionary *own = VXMutableParameters(parameters);
    const int minutes = VXIntParameter(own, VXKey(kIdleMinutes), kDefaultIdleMinutes);
    [own setObject:@(false) forKey:VXKey(kNeedsStartup)];
    [own setObject:@(false) forKey:VXKey(kNeedsWakeUp)];
    [own setObject:@(VXFlagParameter(own, VXKey(kOnlyWhenIdle), false)) forKey:VXKey(kOnlyWhenIdle)];
    [own setObject:@(std::clamp(minutes, kLeastIdleMinutes, kMostIdleMinutes)) forKey:VXKey(kIdleMinutes)];
    [_parameters release];
    _parameters = own;
}

- (void)fillSetupInterfaceFromParameters {
    [_setupView setOnlyWhenIdle:[[_parameters objectForKey:VXKey(kOnlyWhenIdle)] boolValue]];
    [_setupView setMinutes:[[_parameters objectForKey:VXKey(kIdleMinutes)] intValue]];
}

- (void)fillParametersFromSetupInterface {
    if (!_setupView) return;
    [_parameters setObject:@(static_cast<bool>([_setupView onlyWhenIdle])) forKey:VXKey(kOnlyWhenIdle)];
    [_parameters setObject:@([_setupView minutes]) forKey:VXKey(kIdleMinutes)];
}

- (NSString *)actionString {
    if (![[_parameters objectForKey:VXKey(kOnlyWhenIdle)] boolValue])
        return VXLocalized(@"Mise en veille immediate", self);
    return [NSString stringWithFormat:VXLocalized(@"Apres %d min d'inactivite", self),
                                      [[_parameters objectForKey:VXKey(kIdleMinutes)] intValue]];
}

@end
