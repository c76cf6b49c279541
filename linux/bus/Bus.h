#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "linux/EventLoop.h"

namespace quorel {

enum class Bus { System, Session };

using BusConnection = std::unique_ptr<sd_bus, Release<sd_bus_close_unref>>;
using BusMessagePointer = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;
using BusSlot = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;
using BusDeadline = std::chrono::steady_clock::time_point;

// A connection and whatever came from it belong to one thread at a time.

/// Begins to connect, without waiting for the bus. Null when there is no bus.
BusConnection beginConnection(Bus bus);
/// Serves a connection that no loop serves until the condition holds. False when it does not by the deadline, or the
/// bus has gone.
bool serveUntil(sd_bus* bus, BusDeadline deadline, const std::function<bool()>& condition);

/// How long a program that starts in the background waits for a bus that is slow to answer.
inline constexpr std::chrono::seconds kBusPatience{10};

/// Connects, which takes no longer than the limit, and has the loop serve the connection. When the bus goes later, the
/// loop ends with status 1. Throws std::runtime_error.
///
/// Objects at further paths, calls and matches share a connection; PublicConnection says when one does not do. Once the
/// program serves, nothing on it may wait for an answer (sd_bus_call and the like): sd-bus reads one message at a time
/// and leaves the others to the bus, which keeps count of them, but who waits has it read them all into this program's
/// memory.
BusConnection connectTo(Bus bus, EventLoop& loop, std::chrono::seconds limit = kBusPatience);
/// False when somebody else has the name; throws std::runtime_error when it is not to be had at all.
bool requestName(sd_bus* bus, const std::string& name, std::chrono::seconds limit = kBusPatience);

/// A message to be filled. Null when the connection has gone; sd-bus's functions take that for a failure.
BusMessagePointer newCall(sd_bus* bus, const char* receiver, const char* path, const char* interface,
                          const char* method);
/// Sends a call, and hands over the reply, an error or the time-out too, unless the slot has gone by then; a callback
/// may let the slot go. Null when nothing could be sent, in which case nothing will be handed over.
BusSlot callAsync(sd_bus* bus, sd_bus_message* call, std::chrono::microseconds limit,
                  std::function<void(sd_bus_message* reply)> replied);

/// Has the members of an interface served, with `self` handed to each. Throws std::runtime_error.
BusSlot addObject(sd_bus* bus, const char* path, const char* interface, const sd_bus_vtable* members, void* self);

/// The longest that a reply of the bus itself takes, when much that strangers have sent is in front of it.
inline constexpr std::chrono::seconds kLongestReply{60};

/// What a reply says that is an error; an empty name for one that is none. The message is somebody else's text.
struct BusError {
    std::string name;
    std::string message;
    explicit operator bool() const { return !name.empty(); }
};
BusError errorOf(sd_bus_message* reply);

// Anybody can send anything to a single connection, and sd-bus takes that for a match whatever sender the rule names.
// Here only what the bus itself, or the owner of the name, has sent is handed over. A callback may let its slot go.
// The bus refuses more than 512 at a time of one connection; `installed` tells whether it has, the log otherwise.

using Installed = std::function<void(bool done)>;
/// Tells of each new owner of a name, a unique name; empty when it has none any more.
BusSlot watchOwner(sd_bus* bus, const std::string& name, std::function<void(const std::string& owner)> changed,
                   Installed installed = {});
/// Tells of each name that has no owner any more, those of connections among them.
BusSlot watchLeaving(sd_bus* bus, std::function<void(const std::string& name)> left, Installed installed);
/// Hands over the signals of a name's owner that the rest of a match rule describes.
BusSlot watchSignals(sd_bus* bus, const std::string& name, const std::string& rule,
                     std::function<void(sd_bus_message* signal)> heard);

}  // namespace quorel
