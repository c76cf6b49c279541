#import <Quorel/VXPrefPanePlugInProtocol.h>

#include <algorithm>

#include "modules/Parameters.h"
#include "modules/Sleep/VXSleepOptionsView.h"

static NSString *const kOnlyWhenIdle = @"Only When Idle";
static NSString *const kIdleMinutes = @"Idle Minutes";
static const int kDefaultIdleMinutes = 15;

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
        kNeedsStartup : @(false),
        kNeedsWakeUp : @(false),
        kOnlyWhenIdle : @(false),
        kIdleMinutes : @(kDefaultIdleMinutes)
    };
}

- (NSDictionary *)parameters {
    return [[_parameters copy] autorelease];
}

- (void)setParameters:(NSDictionary *)parameters {
    NSMutableDictionary *own = VXMutableParameters(parameters);
    const int minutes = VXIntParameter(own, kIdleMinutes, kDefaultIdleMinutes);
    [own setObject:@(false) forKey:kNeedsStartup];
    [own setObject:@(false) forKey:kNeedsWakeUp];
    [own setObject:@(VXFlagParameter(own, kOnlyWhenIdle, false)) forKey:kOnlyWhenIdle];
    [own setObject:@(std::clamp(minutes, kLeastIdleMinutes, kMostIdleMinutes)) forKey:kIdleMinutes];
    [_parameters release];
    _parameters = own;
}

- (void)fillSetupInterfaceFromParameters {
    [_setupView setOnlyWhenIdle:[[_parameters objectForKey:kOnlyWhenIdle] boolValue]];
    [_setupView setMinutes:[[_parameters objectForKey:kIdleMinutes] intValue]];
}

- (void)fillParametersFromSetupInterface {
    if (!_setupView) return;
    [_parameters setObject:@(static_cast<bool>([_setupView onlyWhenIdle])) forKey:kOnlyWhenIdle];
    [_parameters setObject:@([_setupView minutes]) forKey:kIdleMinutes];
}

- (NSString *)actionString {
    if (![[_parameters objectForKey:kOnlyWhenIdle] boolValue]) return VXLocalized(@"Mise en veille immediate", self);
    return [NSString stringWithFormat:VXLocalized(@"Apres %d min d'inactivite", self),
                                      [[_parameters objectForKey:kIdleMinutes] intValue]];
}

@end
