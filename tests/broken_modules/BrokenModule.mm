#import <Quorel/VXPrefPanePlugInProtocol.h>

/* Complete in itself; what is wrong with it is chosen where it is built. */
@interface BROKEN_CLASS : NSObject
#ifdef BROKEN_CONFORMS
                          <VXPrefPanePlugInProtocol>
#endif
@end

@implementation BROKEN_CLASS

+ (BOOL)initializeClass:(NSBundle *)bundle {
    return YES;
}

+ (void)terminateClass {
}

- (NSString *)pluginIdentifier {
    return [@"org.example." stringByAppendingString:NSStringFromClass([self class])];
}

- (NSString *)pluginName {
#ifdef BROKEN_NAMED
    return NSStringFromClass([self class]);
#else
    return nil;
#endif
}

- (BOOL)isBaseModule {
    return NO;
}

- (void)loadNib {
}

- (NSView *)setupView {
    return nil;
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

- (void)fillSetupInterfaceFromParameters {
}

- (void)fillParametersFromSetupInterface {
}

- (NSDictionary *)defaultParameters {
    return nil;
}

- (NSDictionary *)parameters {
    return nil;
}

- (void)setParameters:(NSDictionary *)parameters {
}

- (NSString *)actionString {
    return @"";
}

@end
