#include "agent/idle/XServerIdle.h"

#include <fcntl.h>
#include <unistd.h>
#include <xcb/screensaver.h>
#include <xcb/xcbext.h>

#include <cstdlib>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace quorel {

namespace {

template <class Content>
using Owned = std::unique_ptr<Content, Release<std::free>>;

bool isThere() {
    const char* type = std::getenv("XDG_SESSION_TYPE");
    const bool isWayland = std::getenv("WAYLAND_DISPLAY") || (type && type == std::string_view("wayland"));
    return !isWayland && std::getenv("DISPLAY");
}

/// On a thread, which may hang in here for as long as the server does, the agent's end included. Where nobody waits for
/// the connection any more, it is closed.
void connectTo(const FileDescriptor& receiver) {
    xcb_connection_t* display = xcb_connect(nullptr, nullptr);
    if (!xcb_connection_has_error(display)) xcb_get_extension_data(display, &xcb_screensaver_id);  // known from now on
    if (write(receiver.get(), &display, sizeof display) != sizeof display) xcb_disconnect(display);
}

}  // namespace

void XServerIdle::CloseDisplay::operator()(xcb_connection_t* display) const {
    xcb_disconnect(display);
}

void XServerIdle::ask(Told told) {
    if (!isThere()) return told({});
    if (_sequence != 0) drop();  // it hangs, and what it says later answers nothing
    _told = std::move(told);
    if (_display)
        question();
    else if (!_delivery)
        connect();
}

void XServerIdle::connect() try {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return tell({});
    _delivery = FileDescriptor(ends[0]);
    FileDescriptor receiver(ends[1]);
    _deliverySource = whenReadable(_loop, _delivery.get(), [this] { connected(); });
    std::thread([receiver = std::move(receiver)] { connectTo(receiver); }).detach();
} catch (const std::system_error&) {  // the system has no thread to give
    _deliverySource.reset();
    _delivery.close();
    tell({});
}

void XServerIdle::connected() {
    xcb_connection_t* display = nullptr;
    const bool isDelivered = read(_delivery.get(), &display, sizeof display) == sizeof display;
    _deliverySource.reset();
    _delivery.close();
    if (isDelivered) _display.reset(display);
    if (!_display || xcb_connection_has_error(display)) return drop();
    _displaySource = whenReadable(_loop, xcb_get_file_descriptor(display), [this] { readable(); });
    if (_told) question();
}

void XServerIdle::question() {
    xcb_connection_t* const display = _display.get();
    const auto screens = xcb_setup_roots_iterator(xcb_get_setup(display));
    const auto* extension = xcb_get_extension_data(display, &xcb_screensaver_id);
    if (screens.rem == 0 || !extension || !extension->present) return tell({});
    _sequence = xcb_screensaver_query_info(display, screens.data->root).sequence;
    xcb_flush(display);
    readable();
}

void XServerIdle::readable() {
    xcb_connection_t* const display = _display.get();
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(display)}) {
    }
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    const bool isAnswered = _sequence != 0 && xcb_poll_for_reply(display, _sequence, &answer, &error) != 0;
    const Owned<xcb_screensaver_query_info_reply_t> info(static_cast<xcb_screensaver_query_info_reply_t*>(answer));
    const Owned<xcb_generic_error_t> owned(error);
    if (xcb_connection_has_error(display)) return drop();
    if (!isAnswered) return;
    _sequence = 0;
    tell(info ? std::optional<Seconds>(info->ms_since_user_input / 1000) : std::nullopt);
}

void XServerIdle::tell(std::optional<Seconds> idle) {
    if (const Told told = std::exchange(_told, nullptr)) told(idle);
}

void XServerIdle::drop() {
    _displaySource.reset();
    _display.reset();
    _sequence = 0;
    tell({});
}

}  // namespace quorel
