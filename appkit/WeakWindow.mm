#import "appkit/WeakWindow.h"

@interface VXWindowWitness : NSView {
@public
    NSWindow **place;
}
@end

@implementation VXWindowWitness

// A window that goes takes leave of its views.
- (void)viewWillMoveToWindow:(NSWindow *)window {
    if (!window && place) *place = nil;
    [super viewWillMoveToWindow:window];
}

@end

namespace quorel::appkit {

void WeakWindow::set(NSWindow *window) {
    if (_witness) {
        _witness->place = nullptr;
        [_witness removeFromSuperview];
        [_witness release];
        _witness = nil;
    }
    _window = window;
    if (!window) return;
    _witness = [[VXWindowWitness alloc] initWithFrame:NSZeroRect];
    [[[window contentView] superview] addSubview:_witness];  // beside the content, which the host may replace
    _witness->place = &_window;
}

}  // namespace quorel::appkit
