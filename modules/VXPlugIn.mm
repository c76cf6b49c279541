#import "modules/VXPlugIn.h"

#include "actions/DescriptionKeys.h"
#include "modules/Parameters.h"

using namespace quorel;

@implementation VXPlugIn

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

- (id)information:(std::string_view)key {
    return [[NSBundle bundleForClass:[self class]] objectForInfoDictionaryKey:VXKey(key)];
}

/* What the computer itself does, beside which what programs do is listed. */
- (BOOL)isBaseModule {
    return [self information:description_keys::kProgram] == nil;
}

- (NSString *)pluginIdentifier {
    return [self information:description_keys::kType];
}

- (NSString *)pluginName {
    return VXLocalized(@"Nom", self);
}

- (NSString *)actionString {
    return [self pluginName];
}

- (void)complete:(NSMutableDictionary *)parameters {
    for (std::string_view key : {parameters::kNeedsStartup, parameters::kNeedsWakeUp})
        [parameters setObject:@(VXFlagParameter(parameters, VXKey(key))) forKey:VXKey(key)];
}

- (NSDictionary *)defaultParameters {
    NSMutableDictionary *parameters = [NSMutableDictionary dictionary];
    [self complete:parameters];
    return parameters;
}

- (NSDictionary *)parameters {
    return [[_parameters copy] autorelease];
}

- (void)setParameters:(NSDictionary *)parameters {
    const BOOL usable = [parameters isKindOfClass:[NSDictionary class]];
    NSMutableDictionary *own = usable ? [parameters mutableCopy] : [[NSMutableDictionary alloc] init];
    [self complete:own];
    [_parameters release];
    _parameters = own;
}

- (BOOL)flag:(std::string_view)key {
    return VXFlagParameter(_parameters, VXKey(key));
}

- (void)setFlag:(std::string_view)key to:(BOOL)needs {
    [_parameters setObject:@(static_cast<bool>(needs)) forKey:VXKey(key)];
    [self complete:_parameters];
}

- (BOOL)needsWakeUp {
    return [self flag:parameters::kNeedsWakeUp];
}

- (void)setNeedsWakeUp:(BOOL)needs {
    [self setFlag:parameters::kNeedsWakeUp to:needs];
}

- (BOOL)needsWakeUpByDefault {
    return VXFlagParameter([self defaultParameters], VXKey(parameters::kNeedsWakeUp));
}

- (BOOL)needsStartup {
    return [self flag:parameters::kNeedsStartup];
}

- (void)setNeedsStartup:(BOOL)needs {
    [self setFlag:parameters::kNeedsStartup to:needs];
}

- (BOOL)needsStartupByDefault {
    return VXFlagParameter([self defaultParameters], VXKey(parameters::kNeedsStartup));
}

- (void)loadNib {
}

- (NSView *)setupView {
    return nil;
}

- (void)fillSetupInterfaceFromParameters {
}

- (void)fillParametersFromSetupInterface {
}

@end
