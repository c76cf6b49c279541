#pragma once

#include <systemd/sd-event.h>

#include <cstdint>
#include <functional>
#include <string>

#include "agent/Message.h"
#include "linux/Bus.h"

namespace quorel {

/// Tells the user something, by desktop notifications. A later message takes the place of an earlier one. Where
/// nobody shows notifications, the message is logged. Never blocks. All on the event loop's thread.
class Notifier {
public:
    /// `pressed` gets the page of the message whose button was pressed.
    explicit Notifier(std::function<void(const std::string& page)> pressed) : _pressed(std::move(pressed)) {}

    /// Nothing on success, otherwise the reason.
    std::string attach(sd_event* loop);
    void show(Message message);

private:
    void send(bool markup, bool buttons);
    void failed(const char* reason) const;
    static int capabilitiesKnown(sd_bus_message* message, void* self, sd_bus_error*);
    static int shown(sd_bus_message* message, void* self, sd_bus_error*);
    static int actionInvoked(sd_bus_message* message, void* self, sd_bus_error*);

    const std::function<void(const std::string&)> _pressed;
    BusConnection _bus{nullptr, sd_bus_close_unref};
    BusSlot _call{nullptr, sd_bus_slot_unref};  // the one under way; a later message cancels it
    Message _message;
    std::uint32_t _id = 0;  // of the notification on the screen
    std::string _server;    // who shows it: a unique name
};

}  // namespace quorel
