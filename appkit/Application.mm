#import "appkit/Application.h"

#import "appkit/Strings.h"
#import "appkit/VXSheet.h"
#import "appkit/Views.h"

namespace quorel::appkit {

namespace {

NSWindow *nativeWindowOf(quorel::Window *window) {
    auto *native = dynamic_cast<Window *>(window);
    return native ? native->nativeWindow() : nil;
}

VXSheet *sheetOf(quorel::Window &window) {
    return static_cast<VXSheet *>(nativeWindowOf(&window));  // the interface files have no others
}

}  // namespace

std::shared_ptr<quorel::Window> Application::mainWindow() const {
    return wrapped<Window>([NSApp mainWindow]);
}

std::shared_ptr<quorel::Window> Application::modalWindow() const {
    return wrapped<Window>([NSApp modalWindow]);
}

void Application::beginSheetModalForWindow(quorel::Window &sheet, quorel::Window *window) {
    [sheetOf(sheet) beginOver:nativeWindowOf(window)];
}

void Application::runModalForWindow(quorel::Window &window) {
    [NSApp runModalForWindow:nativeWindowOf(&window)];
}

void Application::stopModal() {
    if ([NSApp modalWindow]) [NSApp stopModal];  // without a loop some frameworks raise
}

void Application::endSheet(quorel::Window &sheet) {
    [sheetOf(sheet) end];
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
