#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "linux/AsyncBus.h"
#include "linux/FileDescriptor.h"

namespace quorel {

// What several files say to logind.

namespace logind {

inline constexpr const char* kName = "org.freedesktop.login1";
inline constexpr BusObject kManager = {kName, "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
inline constexpr BusObject kManagerProperties = {kName, kManager.path, "org.freedesktop.DBus.Properties"};
inline constexpr const char* kSessionInterface = "org.freedesktop.login1.Session";
inline constexpr const char* kUnderWay = "org.freedesktop.login1.OperationInProgress";

/// A match rule for one of the manager's signals.
std::string signalRule(const char* member);

/// Calls for each name of a reply with `a{sv}`, the message being inside the variant; `read` reads what is of the type
/// given and leaves the rest. False where the message is something else.
bool readProperties(sd_bus_message* reply,
                    const std::function<void(const std::string& name, const std::string& type)>& read);

/// Basic types only; a default value where the next thing is no such thing.
std::string readText(sd_bus_message* message);
bool readFlag(sd_bus_message* message);
std::uint64_t readNumber(sd_bus_message* message);

}  // namespace logind

/// Keeps logind from something while it is held. Asking takes a moment; others see it by `who` and `why`.
class InhibitorLock {
public:
    InhibitorLock(sd_bus* bus, const char* what, const char* mode) : _bus(bus), _what(what), _mode(mode) {}

    /// Asks for it unless it is held or asked for. `failed` is called later where it is not to be had.
    void take(const std::string& why, std::function<void(const BusError&)> failed);
    void release();
    bool isHeld() const { return static_cast<bool>(_lock); }

private:
    sd_bus* _bus;
    const char* _what;
    const char* _mode;
    BusCall _call;
    FileDescriptor _lock;
};

}  // namespace quorel
