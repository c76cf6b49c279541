#pragma once

#include <cstdint>
#include <string_view>

namespace quorel {

/// What a module's information dictionary tells programs that load no class: which action it is, what that is called
/// and what it runs. docs/writing-a-module.md explains them to authors. A module without them is set up as ever, and
/// does nothing.
namespace module_keys {

inline constexpr std::string_view kActionType = "QuorelActionType";  ///< text: the `pluginIdentifier` of its class
inline constexpr std::string_view kNames = "QuorelActionNames";      ///< dictionary: language, as "en", to text
/// Text: the program's file in the module's Resources folder, a name without a slash. Absent where the daemon carries
/// the action out itself.
inline constexpr std::string_view kProgram = "QuorelActionProgram";
inline constexpr std::string_view kRunsAs = "QuorelActionRunsAs";  ///< text: one of the two below
inline constexpr std::string_view kSystem = "system";              ///< in a sandbox, whoever is logged in
inline constexpr std::string_view kUser = "user";                  ///< as the user at the computer, in the session
inline constexpr std::string_view kTimeLimit = "QuorelActionTimeLimit";  ///< seconds, brought into the range below
inline constexpr std::int64_t kDefaultTimeLimit = 600;
inline constexpr std::int64_t kMostTimeLimit = 86'400;
/// Seconds: how late a missed one may still run. None when absent.
inline constexpr std::string_view kMakeUp = "QuorelActionMakeUp";
/// Of "system" ones, what the sandbox lets through. An array of the two texts below.
inline constexpr std::string_view kNeeds = "QuorelActionNeeds";
inline constexpr std::string_view kNetwork = "network";
inline constexpr std::string_view kRoot = "root";
/// Array of texts: folders that a "system" one writes, as absolute paths.
inline constexpr std::string_view kWrites = "QuorelActionWrites";

}  // namespace module_keys

}  // namespace quorel
