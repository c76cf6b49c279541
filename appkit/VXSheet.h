#import <AppKit/AppKit.h>

/* A window that is shown as a sheet. Main thread.
 *
 * The framework's sheets do not fit on GNUstep: its beginSheet runs a modal loop of its own, its endSheet ends one
 * more. There this is a window without a frame that hangs from its parent's title bar, goes where the parent goes, and
 * is kept above it by the window manager. */
@interface VXSheet : NSPanel {
    NSWindow *_hangsFrom;  // while it is shown
}

/* Shows it over a window, or over the main window for nil; where there is none either, in the middle of the screen. */
- (void)beginOver:(NSWindow *)parent;
/* To be ordered out next. */
- (void)end;

@end
