#pragma once

#include <array>
#include <string_view>

namespace quorel {

/// The keys of a Schedule: one action, at one hour and minute, on each day that is marked active.
/// Whatever stands under them is read through `Value::intValue`, so digits in a text and numbers are alike.
namespace schedule_keys {

inline constexpr std::string_view kIsEnabled = "Is Enabled";
inline constexpr std::string_view kActionType = "Action Type";              ///< text: identifier of the action module
inline constexpr std::string_view kActionHour = "Action Hour";              ///< 0 to 23
inline constexpr std::string_view kActionMinute = "Action Minute";          ///< 0 to 59
inline constexpr std::string_view kActionParameters = "Action Parameters";  ///< the module's own
/// Monday first.
inline constexpr std::array<std::string_view, 7> kActiveOnDays = {
    "Active On Monday", "Active On Tuesday",  "Active On Wednesday", "Active On Thursday",
    "Active On Friday", "Active On Saturday", "Active On Sunday"};

inline constexpr std::string_view kSleepType = "com.quorel.plugin.Sleep";
inline constexpr std::string_view kWakeUpType = "com.quorel.plugin.WakeUp";
inline constexpr std::string_view kShutDownType = "com.quorel.plugin.ShutDown";
inline constexpr std::string_view kStayAwakeType = "com.quorel.plugin.StayAwake";

/// The table's column that sums up the action. No Schedule has such a key.
inline constexpr std::string_view kInfos = "Infos";

}  // namespace schedule_keys

}  // namespace quorel
