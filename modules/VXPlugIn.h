#import <Quorel/VXPrefPanePlugInProtocol.h>

/*
 * What the product's modules do alike. A module derives from it, says what its action does, and which parameters it
 * has. Both flags are the user's choice, and there are no options, unless it says otherwise.
 *
 * Two bundles in one process cannot share a class: each is built with one of its own (see CMakeLists.txt).
 */
@interface VXPlugIn : NSObject <VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> {
    NSMutableDictionary *_parameters;
}

/* Has the dictionary hold everything that the module reads, each of the right kind and in range; what is fixed is set,
 * what it does not know stays. Of an empty one it makes the default parameters. */
- (void)complete:(NSMutableDictionary *)parameters;

@end
