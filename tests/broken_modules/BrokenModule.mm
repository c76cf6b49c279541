#import <Quorel/VXPrefPanePlugInProtocol.h>

// What is wrong with it, chosen where it is built, must be noticed before anything else is asked of it.
#pragma clang diagnostic ignored "-Wprotocol"

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

@end
