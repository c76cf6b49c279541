#import "appkit/Application.h"

#include <algorithm>

#import "appkit/Strings.h"
#import "appkit/Views.h"

#ifdef GNUSTEP

/// A window as a sheet.
@interface NSWindow (VXSheet)
- (void)vxHangFrom:(NSWindow *)parent;
- (void)vxParentMoved:(NSNotification *)notification;
@end

@implementation NSWindow (VXSheet)

/// In the middle of its parent, hanging from the title bar, and never beyond the screen's edges.
- (void)vxHangFrom:(NSWindow *)parent {
    constexpr CGFloat kTitleBarHeight = 22;
    NSRect frame = [self frame];
    if (parent) {
        frame.origin.x = NSMidX([parent frame]) - frame.size.width / 2;
        frame.origin.y = NSMaxY([parent frame]) - kTitleBarHeight - frame.size.height;
    }
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    frame.origin.x = std::max(std::min(frame.origin.x, NSMaxX(screen) - frame.size.width), NSMinX(screen));
    frame.origin.y = std::max(std::min(frame.origin.y, NSMaxY(screen) - frame.size.height), NSMinY(screen));
    [self setFrameOrigin:frame.origin];
}

- (void)vxParentMoved:(NSNotification *)notification {
    [self vxHangFrom:[notification object]];
}

@end

#endif

namespace quorel::appkit {

namespace {

NSWindow *nativeWindowOf(quorel::Window *window) {
    auto *native = dynamic_cast<Window *>(window);
    return native ? native->nativeWindow() : nil;
}

#ifdef GNUSTEP

// The framework's sheets do not fit here: its beginSheet runs a modal loop of its own, its endSheet ends one more. So a
// sheet is a window that is placed by hand, and goes where its parent goes, as elsewhere the framework sees to. One
// that is begun without a window belongs to the main one all the same; where there is none either it lies in the middle
// of the screen.
void beginSheet(NSWindow *sheet, NSWindow *parent) {
    if (!parent) parent = [NSApp mainWindow];
    if (!parent) [sheet center];
    [sheet vxHangFrom:parent];
    if (parent)
        [[NSNotificationCenter defaultCenter] addObserver:sheet
                                                 selector:@selector(vxParentMoved:)
                                                     name:NSWindowDidMoveNotification
                                                   object:parent];
    [sheet makeKeyAndOrderFront:nil];
}

void endSheet(NSWindow *sheet) {
    [[NSNotificationCenter defaultCenter] removeObserver:sheet name:NSWindowDidMoveNotification object:nil];
}

#else

void beginSheet(NSWindow *sheet, NSWindow *parent) {
    [NSApp beginSheet:sheet modalForWindow:parent modalDelegate:nil didEndSelector:NULL contextInfo:NULL];
}

void endSheet(NSWindow *sheet) {
    [NSApp endSheet:sheet];
}

#endif

}  // namespace

std::shared_ptr<quorel::Window> Application::mainWindow() const {
    return wrapped<Window>([NSApp mainWindow]);
}

std::shared_ptr<quorel::Window> Application::modalWindow() const {
    return wrapped<Window>([NSApp modalWindow]);
}

void Application::beginSheetModalForWindow(quorel::Window &sheet, quorel::Window *window) {
    beginSheet(nativeWindowOf(&sheet), nativeWindowOf(window));
}

void Application::runModalForWindow(quorel::Window &window) {
    [NSApp runModalForWindow:nativeWindowOf(&window)];
}

void Application::stopModal() {
    if ([NSApp modalWindow]) [NSApp stopModal];  // without a loop some frameworks raise
}

void Application::endSheet(quorel::Window &sheet) {
    appkit::endSheet(nativeWindowOf(&sheet));
}

int Application::runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                               std::optional<std::string_view> alternateButton) {
    // The message takes the place of an argument: in the place of the format its percent signs would be interpreted.
    return static_cast<int>(NSRunAlertPanel(nsString(title), @"%@", nsString(defaultButton),
                                            alternateButton ? nsString(*alternateButton) : nil, nil,
                                            nsString(message)));
}

void Application::beep() {
    NSBeep();
}

}  // namespace quorel::appkit
