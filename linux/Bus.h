#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace quorel {

enum class Bus { System, Session };

/// What travels between the product's programs; docs/protocol.md tells the whole of it.
namespace wire {

inline constexpr const char* kPath = "/com/quorel/Communication";
inline constexpr const char* kInterface = "com.quorel.Communication1";
inline constexpr const char* kPing = "Ping";
inline constexpr const char* kPostNotification = "PostNotification";
inline constexpr const char* kPaneName = "com.quorel.PrefPane";

inline constexpr const char* kBusy = "com.quorel.Error.Busy";
inline constexpr const char* kFailed = "com.quorel.Error.Failed";
inline constexpr const char* kInvalidPreferences = "com.quorel.Error.InvalidPreferences";
inline constexpr const char* kNotAuthorized = "com.quorel.Error.NotAuthorized";
inline constexpr const char* kStorageFailed = "com.quorel.Error.StorageFailed";
inline constexpr const char* kUnknownNotification = "com.quorel.Error.UnknownNotification";

}  // namespace wire

using BusConnection = std::unique_ptr<sd_bus, decltype(&sd_bus_close_unref)>;
using BusMessagePointer = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;
using BusSlot = std::unique_ptr<sd_bus_slot, decltype(&sd_bus_slot_unref)>;

/// Begins to connect, without waiting for the bus. Null when there is no bus. A connection and whatever came from it
/// belong to one thread at a time.
BusConnection beginConnection(Bus bus);

}  // namespace quorel
