#pragma once

#include <cstddef>
#include <string_view>

namespace quorel {

/// Names of the programs and of the notifications that they are sent.
inline constexpr std::string_view kDaemonName = "com.quorel.Daemon";
inline constexpr std::string_view kUserAgentName = "com.quorel.UserAgent";
inline constexpr std::string_view kPaneName = "com.quorel.PrefPane";
inline constexpr std::string_view kDaemonMustReloadPrefs = "DaemonMustReloadPrefs";
inline constexpr std::string_view kUserAgentMustCheckUpdates = "UserAgentMustCheckUpdates";

/// The polkit action that changing the product's preferences takes.
inline constexpr const char* kModifyPreferencesAction = "com.quorel.modify-preferences";
/// Those that saying "not this time" and "later" to what is planned take.
inline constexpr const char* kSkipAction = "com.quorel.skip";
inline constexpr const char* kPostponeAction = "com.quorel.postpone";

/// What travels between the product's programs; docs/protocol.md tells the whole of it.
namespace wire {

/// The most that a notification carries: some 2,500 Schedules.
inline constexpr std::size_t kMaximumUserInfoBytes = std::size_t{2} * 1024 * 1024;

inline constexpr const char* kPath = "/com/quorel/Communication";
inline constexpr const char* kInterface = "com.quorel.Communication1";
inline constexpr const char* kPing = "Ping";
inline constexpr const char* kPostNotification = "PostNotification";  ///< name, object, user information
/// The same with a base: what the sender would have sent right after it last read, had nobody touched anything.
inline constexpr const char* kPostEdits = "PostEdits";
/// Key of a base, with 1 under it: nothing was stored when the sender read.
inline constexpr std::string_view kNothingStored = "Nothing Stored";

inline constexpr const char* kBusy = "com.quorel.Error.Busy";
inline constexpr const char* kFailed = "com.quorel.Error.Failed";
inline constexpr const char* kInvalidPreferences = "com.quorel.Error.InvalidPreferences";
inline constexpr const char* kNoSuchOccurrence = "com.quorel.Error.NoSuchOccurrence";
inline constexpr const char* kNotAuthorized = "com.quorel.Error.NotAuthorized";
inline constexpr const char* kStorageFailed = "com.quorel.Error.StorageFailed";
inline constexpr const char* kTooManyChanges = "com.quorel.Error.TooManyChanges";
inline constexpr const char* kUnknownNotification = "com.quorel.Error.UnknownNotification";

/// What the daemon tells of Schedules, and lets people say to it.
namespace scheduler {

inline constexpr const char* kPath = "/com/quorel/Scheduler";
inline constexpr const char* kInterface = "com.quorel.Scheduler1";
inline constexpr const char* kUpcoming = "Upcoming";
inline constexpr const char* kOutcomes = "Outcomes";
inline constexpr const char* kStatus = "Status";
inline constexpr const char* kSkip = "Skip";
inline constexpr const char* kPostpone = "Postpone";
inline constexpr const char* kModules = "Modules";
inline constexpr const char* kChanged = "Changed";
/// The longest answers.
inline constexpr unsigned kMostUpcoming = 100;
inline constexpr unsigned kMostOutcomes = 500;

}  // namespace scheduler

/// What the daemon and the users' agents say to each other.
namespace agents {

inline constexpr const char* kPath = "/com/quorel/Agents";
inline constexpr const char* kInterface = "com.quorel.Agents1";
inline constexpr const char* kRegister = "Register";
inline constexpr const char* kWork = "Work";
inline constexpr const char* kReportIdle = "ReportIdle";
inline constexpr const char* kReportAction = "ReportAction";
inline constexpr const char* kChanged = "Changed";

}  // namespace agents

}  // namespace wire

}  // namespace quorel
