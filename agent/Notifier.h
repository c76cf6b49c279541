#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "agent/Message.h"
#include "linux/Bus.h"

namespace quorel {

/// Tells the user something, by desktop notifications. A later message takes the place of an earlier one. Where
/// nobody shows notifications, the message is logged. Never blocks.
class Notifier {
public:
    /// `pressed` gets the page of the message whose button was pressed. The session bus is served by the loop.
    /// Throws std::runtime_error.
    Notifier(sd_bus* bus, std::function<void(const std::string& page)> pressed);

    void show(Message message);

private:
    void call(const BusMessagePointer& message, void (Notifier::*replied)(sd_bus_message*));
    void capabilitiesKnown(sd_bus_message* reply);
    void send(bool markup, bool buttons);
    void shown(sd_bus_message* reply);
    void failed(const char* reason) const;
    static int actionInvoked(sd_bus_message* message, void* self, sd_bus_error*);

    sd_bus* const _bus;
    const std::function<void(const std::string&)> _pressed;
    BusSlot _signals;
    BusSlot _call;  // the one under way; a later message cancels it
    Message _message;
    std::uint32_t _id = 0;  // of the notification on the screen
    std::string _server;    // who shows it: a unique name
};

}  // namespace quorel
