#import <AppKit/AppKit.h>

@protocol VXOptionsOwner
- (void)optionsDidChange;
@end

/* Holds the options view of the chosen module, and tells its owner when another one has come. */
@interface VXOptionsContainer : NSView {
    IBOutlet id<VXOptionsOwner> owner;
}
@end
