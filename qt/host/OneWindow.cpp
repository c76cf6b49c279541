#include "qt/host/OneWindow.h"

#include <chrono>
#include <exception>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel::qt {

namespace {

constexpr const char* kName = "com.quorel.Settings";
constexpr const char* kPath = "/com/quorel/Settings";
constexpr const char* kInterface = "org.freedesktop.Application";
constexpr std::chrono::seconds kPatience{2};  // somebody waits for the window

}  // namespace

OneWindow::OneWindow(EventLoop& loop, std::function<void()> activated) : _activated(std::move(activated)) {
    static constexpr sd_bus_vtable kMembers[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_ARGS("Activate", SD_BUS_ARGS("a{sv}", platform_data), SD_BUS_NO_RESULT, &OneWindow::activate,
                                SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    try {
        _bus = connectTo(Bus::Session, loop, kPatience);
        sd_bus_set_exit_on_disconnect(_bus.get(), false);
        _object = addObject(_bus.get(), kPath, kInterface, kMembers, this);
        _isFirst = requestName(_bus.get(), kName, kPatience);
        if (!_isFirst) askFirst();
    } catch (const std::exception& exception) {
        MOLLog("Whether the window is open already is not known: %s.", exception.what());
    }
}

int OneWindow::activate(sd_bus_message* call, void* self, sd_bus_error*) {
    static_cast<OneWindow*>(self)->_activated();
    return sd_bus_reply_method_return(call, "");
}

void OneWindow::askFirst() const {
    const auto call = newCall(_bus.get(), kName, kPath, kInterface, "Activate");
    sd_bus_message_append(call.get(), "a{sv}", 0);
    bool answered = false;
    const auto slot = callAsync(_bus.get(), call.get(), kPatience, [&](sd_bus_message*) { answered = true; });
    serveUntil(_bus.get(), BusDeadline::clock::now() + kPatience, [&] { return answered; });
}

}  // namespace quorel::qt
