#import "appkit/VXSheet.h"

#ifdef GNUSTEP
#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>
#endif

#include <algorithm>
#include <vector>

@implementation VXSheet

#ifdef GNUSTEP

// A frame's buttons would minimise a sheet and leave its modal loop to nobody, and how large a frame is shows only when
// the window manager has made it.
- (id)initWithContentRect:(NSRect)rect
                styleMask:(NSUInteger)style
                  backing:(NSBackingStoreType)backing
                    defer:(BOOL)defer {
    return [super initWithContentRect:rect styleMask:NSBorderlessWindowMask backing:backing defer:NO];
}

- (void)performClose:(id)sender {
    if ([(id)[self delegate] windowShouldClose:self]) [self close];
}

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (void)dealloc {
    [self end];
    [super dealloc];
}

/* Without a frame nothing sets it off from what it lies on. */
- (void)setContentView:(NSView *)content {
    [super setContentView:content];
    NSBox *border = [[[NSBox alloc] initWithFrame:[content bounds]] autorelease];
    [border setTitlePosition:NSNoTitle];
    [border setBorderType:NSLineBorder];
    [border setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [content addSubview:border positioned:NSWindowBelow relativeTo:nil];
}

- (void)beginOver:(NSWindow *)parent {
    _hangsFrom = [(parent ? parent : [NSApp mainWindow]) retain];
    if (!_hangsFrom) [self center];
    [self hang:nil];
    if (_hangsFrom) {
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(hang:)
                                                     name:NSWindowDidMoveNotification
                                                   object:_hangsFrom];
        [_hangsFrom addChildWindow:self ordered:NSWindowAbove];
    }
    [self makeKeyAndOrderFront:nil];
    [self performSelector:@selector(askToBeToldOfClosing)
               withObject:nil
               afterDelay:0
                  inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

/* A window manager kills the program of a window that does not ask to be told, and the framework asks only for windows
 * with a close button: each time that it shows one. */
- (void)askToBeToldOfClosing {
    GSDisplayServer *server = GSServerForWindow(self);
    auto *display = static_cast<Display *>([server serverDevice]);
    const auto window = reinterpret_cast<Window>([server windowDevice:static_cast<int>([self windowNumber])]);
    Atom *atoms = nullptr;
    int count = 0;
    if (!display || !window || !XGetWMProtocols(display, window, &atoms, &count)) return;
    std::vector<Atom> protocols(atoms, atoms + count);
    XFree(atoms);
    protocols.push_back(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSetWMProtocols(display, window, protocols.data(), static_cast<int>(protocols.size()));
}

- (void)end {
    [[NSNotificationCenter defaultCenter] removeObserver:self name:NSWindowDidMoveNotification object:nil];
    [_hangsFrom removeChildWindow:self];
    [_hangsFrom release];
    _hangsFrom = nil;
}

/* In the middle of its parent, hanging from the title bar, and never beyond the screen's edges. */
- (void)hang:(NSNotification *)notification {
    constexpr CGFloat kTitleBarHeight = 22;
    NSRect frame = [self frame];
    if (_hangsFrom) {
        frame.origin.x = NSMidX([_hangsFrom frame]) - frame.size.width / 2;
        frame.origin.y = NSMaxY([_hangsFrom frame]) - kTitleBarHeight - frame.size.height;
    }
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    frame.origin.x = std::max(std::min(frame.origin.x, NSMaxX(screen) - frame.size.width), NSMinX(screen));
    frame.origin.y = std::max(std::min(frame.origin.y, NSMaxY(screen) - frame.size.height), NSMinY(screen));
    [self setFrameOrigin:frame.origin];
}

#else

- (void)beginOver:(NSWindow *)parent {
    [NSApp beginSheet:self modalForWindow:parent modalDelegate:nil didEndSelector:NULL contextInfo:NULL];
}

- (void)end {
    [NSApp endSheet:self];
}

#endif

@end
