#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace quorel {

enum class Bus { System, Session };

using BusConnection = std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>;
using BusMessagePointer = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;
using BusSlot = std::unique_ptr<sd_bus_slot, decltype(&sd_bus_slot_unref)>;

/// Begins to connect, without waiting for the bus. Null when there is no bus. A connection and whatever came from it
/// belong to one thread at a time.
BusConnection beginConnection(Bus bus);

}  // namespace quorel
