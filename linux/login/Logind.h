#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "linux/FileDescriptor.h"
#include "linux/bus/Bus.h"

namespace quorel {

// What several files say to logind.

namespace logind {

struct Object {
    const char* path;
    const char* interface;
};
inline constexpr const char* kName = "org.freedesktop.login1";
inline constexpr Object kManager = {"/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
inline constexpr Object kManagerProperties = {kManager.path, "org.freedesktop.DBus.Properties"};
inline constexpr const char* kSessionInterface = "org.freedesktop.login1.Session";
inline constexpr const char* kUnderWay = "org.freedesktop.login1.OperationInProgress";

/// How long it has to answer where nothing else is said.
inline constexpr std::chrono::seconds kPatience{10};

/// As callAsync, with what sd_bus_message_append takes.
template <class... Arguments>
BusSlot call(sd_bus* bus, std::chrono::seconds patience, const Object& object, const char* method,
             std::function<void(sd_bus_message*)> answered, const char* types, Arguments... arguments) {
    const BusMessagePointer message = newCall(bus, kName, object.path, object.interface, method);
    sd_bus_message_append(message.get(), types, arguments...);
    return callAsync(bus, message.get(), patience, std::move(answered));
}

/// One of the manager's signals; as watchSignals.
BusSlot watch(sd_bus* bus, const char* member, std::function<void(sd_bus_message* signal)> heard);

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
    BusSlot _call;
    FileDescriptor _lock;
};

}  // namespace quorel
