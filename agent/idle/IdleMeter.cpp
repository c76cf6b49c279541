#include "agent/idle/IdleMeter.h"

#include <poll.h>
#include <xcb/screensaver.h>
#include <xcb/xcbext.h>

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 1s;
constexpr int kServersPatience = 500;  // in milliseconds; a server that hangs is nobody's session in use
constexpr std::string_view kPlayers = "org.mpris.MediaPlayer2.";
constexpr std::size_t kMostPlayers = 16;

template <class Content>
using Owned = std::unique_ptr<Content, Release<std::free>>;

bool isWayland() {
    const char* type = std::getenv("XDG_SESSION_TYPE");
    return std::getenv("WAYLAND_DISPLAY") || (type && type == std::string_view("wayland"));
}

}  // namespace

void IdleMeter::CloseDisplay::operator()(xcb_connection_t* display) const {
    xcb_disconnect(display);
}

IdleMeter::IdleMeter(sd_bus* session) : _session(session) {}

IdleMeter::~IdleMeter() = default;

void IdleMeter::measure(Measured measured) {
    _waiting.push_back(std::move(measured));
    if (!_calls.empty()) return;
    _idle.reset();
    _plays = false;
    const auto monitor = newCall(_session, "org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core",
                                 "org.gnome.Mutter.IdleMonitor", "GetIdletime");
    sd_bus_message_set_auto_start(monitor.get(), false);
    ask("monitor", monitor, [this](sd_bus_message* reply) {
        std::uint64_t milliseconds = 0;
        if (!errorOf(reply) && sd_bus_message_read(reply, "t", &milliseconds) > 0)
            _idle = static_cast<Seconds>(milliseconds / 1000);
        else if (!isWayland())
            _idle = askServer();
    });
    ask("names",
        newCall(_session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"),
        [this](sd_bus_message* reply) { askPlayers(reply); });
}

void IdleMeter::ask(const std::string& key, const BusMessagePointer& call,
                    std::function<void(sd_bus_message*)> replied) {
    _calls[key] =
        callAsync(_session, call.get(), kPatience, [this, key, replied = std::move(replied)](sd_bus_message* reply) {
            const auto ended = _calls.extract(key);
            replied(reply);
            finishIfComplete();
        });
}

void IdleMeter::askPlayers(sd_bus_message* names) {
    const char* name = nullptr;
    std::size_t players = 0;
    if (errorOf(names) || sd_bus_message_enter_container(names, 'a', "s") < 0) return;
    while (sd_bus_message_read(names, "s", &name) > 0) {
        if (!std::string_view(name).starts_with(kPlayers) || ++players > kMostPlayers) continue;
        const auto call = newCall(_session, name, "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties", "Get");
        sd_bus_message_append(call.get(), "ss", "org.mpris.MediaPlayer2.Player", "PlaybackStatus");
        ask(name, call, [this](sd_bus_message* reply) {
            const char* status = "";
            if (!errorOf(reply) && sd_bus_message_read(reply, "v", "s", &status) > 0)
                _plays = _plays || status == std::string_view("Playing");
        });
    }
}

void IdleMeter::finishIfComplete() {
    if (!_calls.empty()) return;
    if (_plays) _idle = 0;
    for (const Measured& measured : std::exchange(_waiting, {})) measured(_idle);
}

std::optional<Seconds> IdleMeter::askServer() {
    if (!std::getenv("DISPLAY")) return {};
    if (!_display || xcb_connection_has_error(_display.get())) _display.reset(xcb_connect(nullptr, nullptr));
    xcb_connection_t* const display = _display.get();
    if (xcb_connection_has_error(display)) return {};
    const auto screens = xcb_setup_roots_iterator(xcb_get_setup(display));
    if (screens.rem == 0) return {};
    const auto* extension = xcb_get_extension_data(display, &xcb_screensaver_id);
    if (!extension || !extension->present) return {};

    const auto question = xcb_screensaver_query_info(display, screens.data->root);
    xcb_flush(display);
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (!xcb_poll_for_reply(display, question.sequence, &answer, &error)) {
        pollfd readable = {xcb_get_file_descriptor(display), POLLIN, 0};
        if (poll(&readable, 1, kServersPatience) <= 0) {
            _display.reset();  // what it says later answers nothing
            return {};
        }
    }
    const Owned<xcb_screensaver_query_info_reply_t> info(static_cast<xcb_screensaver_query_info_reply_t*>(answer));
    const Owned<xcb_generic_error_t> owned(error);
    if (!info) return {};
    return info->ms_since_user_input / 1000;
}

}  // namespace quorel
