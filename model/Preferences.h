#pragma once

#include <string_view>

namespace quorel {

/// The product's settings, one property-list file for pane, daemon and agents. The pane reads it; the daemon
/// alone writes it.
namespace preferences {

inline constexpr std::string_view kFile = "/Library/Preferences/com.quorel.plist";

inline constexpr std::string_view kCheckUpdates = "Check Updates";
inline constexpr std::string_view kCheckUpdatesFrequency = "Check Updates Frequency";  ///< 0 daily, 1 weekly, 2 monthly
inline constexpr std::string_view kShowInMenuBar = "Show In Menu Bar";
inline constexpr std::string_view kEnableNetworkAdministration = "Enable Network Administration";
inline constexpr std::string_view kPrefsVersion = "Prefs Version";
inline constexpr std::string_view kScheduleArray = "Schedule Array";

}  // namespace preferences

}  // namespace quorel
