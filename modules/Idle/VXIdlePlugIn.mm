#import "modules/Idle/VXIdlePlugIn.h"

#include <algorithm>

#import "modules/Idle/VXIdleOptionsView.h"
#include "modules/Parameters.h"

using namespace quorel::parameters;

static NSString *const kTable = @"Idle";  // of texts

@implementation VXIdlePlugIn

- (void)dealloc {
    [_idleView release];
    [super dealloc];
}

- (void)loadNib {
    if (_idleView) return;
    _idleView =
        [[VXIdleOptionsView alloc] initWithCheckBoxTitle:VXLocalized(@"Seulement apres une inactivite de", self, kTable)
                                                    unit:VXLocalized(@"minutes", self, kTable)
                                                 toolTip:VXLocalized(@"Duree d'inactivite", self, kTable)];
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _idleView;
}

- (void)complete:(NSMutableDictionary *)parameters {
    const int minutes = VXIntParameter(parameters, VXKey(kIdleMinutes), kDefaultIdleMinutes);
    [parameters setObject:@(false) forKey:VXKey(kNeedsStartup)];
    [parameters setObject:@(false) forKey:VXKey(kNeedsWakeUp)];
    [parameters setObject:@(VXFlagParameter(parameters, VXKey(kOnlyWhenIdle))) forKey:VXKey(kOnlyWhenIdle)];
    [parameters setObject:@(std::clamp(minutes, kLeastIdleMinutes, kMostIdleMinutes)) forKey:VXKey(kIdleMinutes)];
}

- (void)fillSetupInterfaceFromParameters {
    [_idleView setOnlyWhenIdle:VXFlagParameter(_parameters, VXKey(kOnlyWhenIdle))];
    [_idleView setMinutes:[self idleMinutes]];
}

- (void)fillParametersFromSetupInterface {
    if (!_idleView) return;
    [_parameters setObject:@(static_cast<bool>([_idleView onlyWhenIdle])) forKey:VXKey(kOnlyWhenIdle)];
    [_parameters setObject:@([_idleView minutes]) forKey:VXKey(kIdleMinutes)];
}

- (int)idleMinutes {
    return VXIntParameter(_parameters, VXKey(kIdleMinutes), kDefaultIdleMinutes);
}

- (NSString *)actionString {
    if (!VXFlagParameter(_parameters, VXKey(kOnlyWhenIdle))) return nil;
    return [NSString stringWithFormat:VXLocalized(@"Apres %d min d'inactivite", self, kTable), [self idleMinutes]];
}

@end
