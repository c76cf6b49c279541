#include "linux/bus/Bus.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr const char* kBusName = "org.freedesktop.DBus";

using Replied = std::function<void(sd_bus_message*)>;

int handOver(sd_bus_message* message, void* replied, sd_bus_error*) try {
    (*static_cast<Replied*>(replied))(message);
    return 0;                                // a signal may be for others too
} catch (const std::exception& exception) {  // memory has run out
    MOLLog("A message is lost: %s", exception.what());
    return 0;
}

/// The slot, with the callback as its own. sd-bus keeps it while it is handing over.
template <class Callback>
BusSlot owning(int result, sd_bus_slot* slot, std::unique_ptr<Callback> callback) {
    if (result < 0) return {};
    sd_bus_slot_set_destroy_callback(slot, [](void* owned) { delete static_cast<Callback*>(owned); });
    static_cast<void>(callback.release());  // the slot deletes it
    return BusSlot(slot);
}

bool isFrom(sd_bus_message* message, std::string_view name) {
    const char* sender = sd_bus_message_get_sender(message);
    return sender && sender == name;
}

/// What a match hands over, and whether the bus has taken it.
struct Match {
    Replied heard;
    Installed installed;
};

int handOverSignal(sd_bus_message* signal, void* match, sd_bus_error* error) {
    return handOver(signal, &static_cast<Match*>(match)->heard, error);
}

/// Without this, sd-bus would close the connection of which the bus takes no further match.
int matchInstalled(sd_bus_message* reply, void* match, sd_bus_error*) {
    const BusError error = errorOf(reply);
    if (const Installed& installed = static_cast<Match*>(match)->installed)
        installed(!error);
    else if (error)
        MOLLog("Signals are not heard: %s", error.message.c_str());
    return 0;
}

BusSlot addMatch(sd_bus* bus, const std::string& sender, const std::string& rule, Replied heard,
                 Installed installed = {}) {
    std::unique_ptr<Match> match(new Match{std::move(heard), std::move(installed)});
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_match_async(bus, &slot, ("type='signal',sender='" + sender + "'," + rule).c_str(),
                                              handOverSignal, matchInstalled, match.get());
    return owning(result, slot, std::move(match));
}

constexpr const char* kOwnerRule = "interface='org.freedesktop.DBus',member='NameOwnerChanged',";

}  // namespace

BusConnection beginConnection(Bus bus) {
    sd_bus* connection = nullptr;
    const int result = bus == Bus::System ? sd_bus_open_system(&connection) : sd_bus_open_user(&connection);
    return BusConnection(result < 0 ? nullptr : connection);
}

bool serveUntil(sd_bus* bus, BusDeadline deadline, const std::function<bool()>& condition) {
    while (!condition()) {
        const int result = sd_bus_process(bus, nullptr);
        if (result > 0) continue;
        const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - BusDeadline::clock::now()).count();
        if (result < 0 || left <= 0) return false;
        const int waited = sd_bus_wait(bus, static_cast<std::uint64_t>(left));
        if (waited < 0 && waited != -EINTR) return false;
    }
    return true;
}

BusConnection connectTo(Bus bus, EventLoop& loop, std::chrono::seconds limit) {
    auto connection = beginConnection(bus);
    if (!connection) throw std::runtime_error("there is no bus");
    const auto ready = [&] { return sd_bus_is_ready(connection.get()) > 0; };
    if (!serveUntil(connection.get(), BusDeadline::clock::now() + limit, ready))
        throw std::runtime_error("the bus does not answer");
    sd_bus_set_exit_on_disconnect(connection.get(), true);
    const int result = sd_bus_attach_event(connection.get(), loop.get(), SD_EVENT_PRIORITY_NORMAL);
    if (result < 0) throw std::runtime_error(std::strerror(-result));
    return connection;
}

bool requestName(sd_bus* bus, const std::string& name, std::chrono::seconds limit) {
    sd_bus_set_method_call_timeout(bus, static_cast<std::uint64_t>(std::chrono::microseconds(limit).count()));
    const int result = sd_bus_request_name(bus, name.c_str(), 0);
    sd_bus_set_method_call_timeout(bus, std::chrono::microseconds(kLongestReply).count());
    if (result < 0 && result != -EEXIST)
        throw std::runtime_error("the name is refused: " + std::string(std::strerror(-result)));
    return result >= 0;
}

BusMessagePointer newCall(sd_bus* bus, const char* receiver, const char* path, const char* interface,
                          const char* method) {
    sd_bus_message* message = nullptr;
    sd_bus_message_new_method_call(bus, &message, receiver, path, interface, method);
    return BusMessagePointer(message);
}

BusSlot callAsync(sd_bus* bus, sd_bus_message* call, std::chrono::microseconds limit, Replied replied) {
    auto callback = std::make_unique<Replied>(std::move(replied));
    sd_bus_slot* slot = nullptr;
    const int result =
        sd_bus_call_async(bus, &slot, call, handOver, callback.get(), static_cast<std::uint64_t>(limit.count()));
    return owning(result, slot, std::move(callback));
}

BusSlot addObject(sd_bus* bus, const char* path, const char* interface, const sd_bus_vtable* members, void* self) {
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_object_vtable(bus, &slot, path, interface, members, self);
    if (result < 0) throw std::runtime_error(std::strerror(-result));
    return BusSlot(slot);
}

BusError errorOf(sd_bus_message* reply) {
    const sd_bus_error* error = sd_bus_message_get_error(reply);
    if (!error || !error->name) return {};
    return {error->name, error->message ? error->message : error->name};
}

BusSlot watchOwner(sd_bus* bus, const std::string& name, std::function<void(const std::string& owner)> changed,
                   Installed installed) {
    const auto heard = [changed = std::move(changed)](sd_bus_message* signal) {
        const char* owner = nullptr;
        if (isFrom(signal, kBusName) && sd_bus_message_read(signal, "sss", nullptr, nullptr, &owner) > 0)
            changed(owner);
    };
    return addMatch(bus, kBusName, kOwnerRule + ("arg0='" + name + "'"), heard, std::move(installed));
}

BusSlot watchLeaving(sd_bus* bus, std::function<void(const std::string& name)> left, Installed installed) {
    const auto heard = [left = std::move(left)](sd_bus_message* signal) {
        const char* name = nullptr;
        if (isFrom(signal, kBusName) && sd_bus_message_read(signal, "s", &name) > 0) left(name);
    };
    return addMatch(bus, kBusName, std::string(kOwnerRule) + "arg2=''", heard, std::move(installed));
}

BusSlot watchSignals(sd_bus* bus, const std::string& name, const std::string& rule,
                     std::function<void(sd_bus_message* signal)> heard) {
    struct Owner {
        std::string name;
        BusSlot changes;
        BusSlot question;
    };
    const auto owner = std::make_shared<Owner>();
    owner->changes = watchOwner(bus, name, [known = owner.get()](const std::string& now) { known->name = now; });
    const auto call = newCall(bus, kBusName, "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner");
    sd_bus_message_append(call.get(), "s", name.c_str());
    owner->question = callAsync(bus, call.get(), kLongestReply, [known = owner.get()](sd_bus_message* reply) {
        const char* now = nullptr;
        if (!errorOf(reply) && sd_bus_message_read(reply, "s", &now) > 0) known->name = now;
    });
    if (!owner->changes || !owner->question) return {};
    // The answer about the owner comes before the first signal: the bus takes one message after the other.
    return addMatch(bus, name, rule, [owner, heard = std::move(heard)](sd_bus_message* signal) {
        if (isFrom(signal, owner->name)) heard(signal);
    });
}

}  // namespace quorel
