#pragma once

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace quorel {

// Calls and signals of a bus connection that an event loop serves, and the loop's timers: all on the loop's thread.

template <auto kRelease>
struct Release {
    void operator()(auto* object) const { kRelease(object); }
};
using BusReference = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;
/// A call under way. Dropping it forgets the answer.
using BusCall = BusReference;
/// Signals that are listened to, until it is dropped.
using BusWatch = BusReference;
using BusRequest = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;
using EventSource = std::unique_ptr<sd_event_source, Release<sd_event_source_disable_unref>>;

struct BusObject {
    const char* name;
    const char* path;
    const char* interface;
};

/// Gets the reply, an error's too (see errorOf), or the signal. May drop what it was made with.
using BusHandler = std::function<void(sd_bus_message*)>;

/// What a reply says that is an error; an empty name where it is none. The message is somebody else's text.
struct BusError {
    std::string name;
    std::string message;
    explicit operator bool() const { return !name.empty(); }
};
BusError errorOf(sd_bus_message* reply);

/// How long others have to answer, in microseconds, where nothing else is said.
inline constexpr std::uint64_t kBusPatience = 10'000'000;

/// Null on a connection that has gone, where no answer comes any more.
BusCall callAsync(sd_bus* bus, BusRequest request, BusHandler answered, std::uint64_t patience = kBusPatience);

BusRequest newRequest(sd_bus* bus, const BusObject& object, const char* member);

template <class... Arguments>
BusCall callAsync(sd_bus* bus, const BusObject& object, const char* member, BusHandler answered, const char* types,
                  Arguments... arguments) {
    BusRequest request = newRequest(bus, object, member);
    if (!request || sd_bus_message_append(request.get(), types, arguments...) < 0) return {};
    return callAsync(bus, std::move(request), std::move(answered));
}

/// Listens to what a match rule describes.
BusWatch watchBus(sd_bus* bus, const std::string& rule, BusHandler heard);

/// Calls once, after so many microseconds during which the computer is awake.
EventSource callLater(sd_event* loop, std::uint64_t delay, std::function<void()> call);
/// Calls whenever the descriptor, which stays the caller's, has something to read.
EventSource callWhenReadable(sd_event* loop, int descriptor, std::function<void()> call);

}  // namespace quorel
