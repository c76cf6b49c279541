#import "appkit/VXOptionsContainer.h"

@implementation VXOptionsContainer

- (void)didAddSubview:(NSView *)subview {
    [super didAddSubview:subview];
    [owner optionsDidChange];
}

@end
