#import "appkit/Application.h"

#import "appkit/Strings.h"
#import "appkit/Views.h"

namespace quorel::appkit {

namespace {

NSWindow *nativeWindowOf(quorel::Window *window) {
    auto *native = dynamic_cast<Window *>(window);
    return native ? native->nativeWindow() : nil;
}

}  // namespace

std::shared_ptr<quorel::Window> Application::mainWindow() const {
    return wrapped<Window>([NSApp mainWindow]);
}

std::shared_ptr<quorel::Window> Application::modalWindow() const {
    return wrapped<Window>([NSApp modalWindow]);
}

void Application::beginSheetModalForWindow(quorel::Window &sheet, quorel::Window *window) {
    [NSApp beginSheet:nativeWindowOf(&sheet)
        modalForWindow:nativeWindowOf(window)
         modalDelegate:nil
        didEndSelector:NULL
           contextInfo:NULL];
}

void Application::runModalForWindow(quorel::Window &window) {
    [NSApp runModalForWindow:nativeWindowOf(&window)];
}

void Application::stopModal() {
    [NSApp stopModal];
}

void Application::endSheet(quorel::Window &sheet) {
    [NSApp endSheet:nativeWindowOf(&sheet)];
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

bool Workspace::openURL(std::string_view url) {
    NSURL *address = [NSURL URLWithString:nsString(url)];
    return address && [[NSWorkspace sharedWorkspace] openURL:address];
}

}  // namespace quorel::appkit
