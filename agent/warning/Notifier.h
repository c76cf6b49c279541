#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "agent/warning/Message.h"
#include "linux/bus/Bus.h"

namespace quorel {

/// One place on the screen where the user is told something, by desktop notifications. A later message takes the place
/// of an earlier one. Where nobody shows notifications, the message is logged, once. Never blocks.
class Notifier {
public:
    /// `pressed` gets the key of the button. The session bus is served by the loop. Throws std::runtime_error.
    Notifier(sd_bus* bus, std::function<void(const std::string& key)> pressed);
    Notifier(const Notifier&) = delete;

    void show(Message message);
    /// Takes the message away.
    void withdraw();
    /// Whether the user has taken the last message away, or pressed one of its buttons.
    bool isDone() const { return _isDone; }
    /// Whether nothing that it has begun is still to end.
    bool isIdle() const { return _call == nullptr; }

private:
    void begin();
    void call(const BusMessagePointer& message, void (Notifier::*replied)(sd_bus_message*));
    void capabilitiesKnown(sd_bus_message* reply);
    void shown(sd_bus_message* reply);
    void withdrawn(sd_bus_message* reply);
    void failed(const std::string& reason);
    bool isAboutOurs(sd_bus_message* signal);
    void invoked(sd_bus_message* signal);
    void closed(sd_bus_message* signal);

    sd_bus* const _bus;
    const std::function<void(const std::string&)> _pressed;
    BusSlot _invocations;
    BusSlot _closings;
    BusSlot _call;                    // the one under way
    bool _again = false;              // something else is wanted since it was made
    std::optional<Message> _message;  // that is wanted
    std::uint32_t _id = 0;            // of the notification on the screen
    std::string _server;              // who shows it: a unique name
    std::string _logged;
    bool _isDone = false;
};

}  // namespace quorel
