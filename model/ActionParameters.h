#pragma once

#include <string_view>

namespace quorel {

/// What stands under "Action Parameters": the keys that the product's own modules share with the daemon and with the
/// programs they bring. Numbers and flags are read through `Value::intValue`; a flag is on when that is not 0.
namespace parameters {

inline constexpr std::string_view kNeedsWakeUp = "Needs Wake Up";   ///< flag: wakes a computer that sleeps
inline constexpr std::string_view kNeedsStartup = "Needs Startup";  ///< flag: starts one that is off

inline constexpr std::string_view kOnlyWhenIdle = "Only When Idle";  ///< flag: sleep and shut-down
inline constexpr std::string_view kIdleMinutes = "Idle Minutes";     ///< brought into the range below
inline constexpr int kDefaultIdleMinutes = 15;                       ///< when absent
inline constexpr int kLeastIdleMinutes = 1;
inline constexpr int kMostIdleMinutes = 999;

inline constexpr std::string_view kRestart = "Restart";  ///< flag: a shut-down that starts the computer again

/// Text: how the computer sleeps, one of those below; the first when absent.
inline constexpr std::string_view kSleepKind = "Kind";
inline constexpr std::string_view kSuspend = "suspend";
inline constexpr std::string_view kHibernate = "hibernate";
inline constexpr std::string_view kSuspendThenHibernate = "suspend-then-hibernate";
inline constexpr std::string_view kAsTheSystemDoes = "system";  ///< whichever the system prefers

inline constexpr std::string_view kUntil = "Until";  ///< text: the time of day (TimeOfDay.h) until which it stays awake

inline constexpr std::string_view kProgram = "Program";      ///< text: the whole path of a program to run
inline constexpr std::string_view kArguments = "Arguments";  ///< text: its arguments, one a line

inline constexpr std::string_view kTarget = "Target";  ///< text: an application, a file or a web address to open
inline constexpr std::string_view kTitle = "Title";    ///< text: of a message
inline constexpr std::string_view kText = "Text";      ///< text: of a message, of several lines perhaps

}  // namespace parameters

/// Whether a program or a file is named by it wherever one is: from the root on, or from the user's home folder.
constexpr bool isWholePath(std::string_view path) {
    return path.starts_with('/') || path.starts_with("~/");
}

}  // namespace quorel
