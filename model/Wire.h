#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

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
inline constexpr const char* kPauseAction = "com.quorel.pause";
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
inline constexpr const char* kCannotPause = "com.quorel.Error.CannotPause";
inline constexpr const char* kCannotTry = "com.quorel.Error.CannotTry";
inline constexpr const char* kFailed = "com.quorel.Error.Failed";
inline constexpr const char* kInvalidPreferences = "com.quorel.Error.InvalidPreferences";
inline constexpr const char* kNoSuchOccurrence = "com.quorel.Error.NoSuchOccurrence";
inline constexpr const char* kNoSuchPause = "com.quorel.Error.NoSuchPause";
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
inline constexpr const char* kUnskip = "Unskip";
inline constexpr const char* kPostponeBy = "PostponeBy";
inline constexpr const char* kTry = "Try";
inline constexpr const char* kPauses = "Pauses";
inline constexpr const char* kPause = "Pause";
inline constexpr const char* kResume = "Resume";
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

/// Keys of the dictionaries that are told; what stands under each is in docs/protocol.md.
namespace keys {

// Of occurrences and outcomes, and of what is wrong with one.
inline constexpr std::string_view kToken = "Token";
inline constexpr std::string_view kDue = "Due";
inline constexpr std::string_view kAt = "At";
inline constexpr std::string_view kAction = "Action";
inline constexpr std::string_view kNames = "Names";
inline constexpr std::string_view kStep = "Step";
inline constexpr std::string_view kCode = "Code";
inline constexpr std::string_view kArguments = "Arguments";

// Of occurrences, and of outcomes' arguments.
inline constexpr std::string_view kRestart = "Restart";
inline constexpr std::string_view kBy = "By";
inline constexpr std::string_view kHold = "Hold";
inline constexpr std::string_view kWho = "Who";
inline constexpr std::string_view kWhy = "Why";
inline constexpr std::string_view kFrom = "From";
inline constexpr std::string_view kNext = "Next";
inline constexpr std::string_view kUntil = "Until";
inline constexpr std::string_view kSeconds = "Seconds";
inline constexpr std::string_view kMinutes = "Minutes";
inline constexpr std::string_view kMadeUp = "MadeUp";
inline constexpr std::string_view kStatus = "Status";
inline constexpr std::string_view kCount = "Count";
inline constexpr std::string_view kBrief = "Brief";
inline constexpr std::string_view kCause = "Cause";
inline constexpr std::string_view kNumber = "Number";
inline constexpr std::string_view kReason = "Reason";

// Of modules, and of what agents are to run.
inline constexpr std::string_view kBundle = "Bundle";
inline constexpr std::string_view kProgram = "Program";
inline constexpr std::string_view kRunsAs = "RunsAs";
inline constexpr std::string_view kTimeLimit = "TimeLimit";
inline constexpr std::string_view kMakeUp = "MakeUp";
inline constexpr std::string_view kNeeds = "Needs";
inline constexpr std::string_view kWrites = "Writes";
inline constexpr std::string_view kFault = "Fault";
inline constexpr std::string_view kFaultKey = "FaultKey";
inline constexpr std::string_view kParameters = "Parameters";
inline constexpr std::string_view kFind = "Find";

// Of the status.
inline constexpr std::string_view kVersion = "Version";
inline constexpr std::string_view kActs = "Acts";
inline constexpr std::string_view kWakeAlarm = "WakeAlarm";
inline constexpr std::string_view kStartupAlarm = "StartupAlarm";
inline constexpr std::string_view kOthers = "Others";
inline constexpr std::string_view kPlanFault = "PlanFault";
inline constexpr std::string_view kStateFault = "StateFault";
inline constexpr std::string_view kClock = "Clock";
inline constexpr std::string_view kFaults = "Faults";

// Of the answer to edits.
inline constexpr std::string_view kBoth = "Both";

// Of an agent's work.
inline constexpr std::string_view kIdle = "Idle";
inline constexpr std::string_view kWatch = "Watch";
inline constexpr std::string_view kKeepAwake = "KeepAwake";
inline constexpr std::string_view kActions = "Actions";

}  // namespace keys

/// Keys of the status, and what they were called in version 1.0: the daemon tells both in the next.
inline constexpr std::pair<std::string_view, std::string_view> kFormerKeys[] = {
    {keys::kWakeAlarm, "Wake Alarm"},
    {keys::kStartupAlarm, "Startup Alarm"},
    {keys::kPlanFault, "Plan Fault"},
    {keys::kStateFault, "State Fault"},
};

/// Where an occurrence stands. They are stored, too; scheduler/Step.h says what each means to the scheduler.
namespace step {

inline constexpr std::string_view kPlanned = "planned";
inline constexpr std::string_view kSkipped = "skipped";
inline constexpr std::string_view kDone = "done";
inline constexpr std::string_view kPostponed = "postponed";
inline constexpr std::string_view kMakeUp = "make-up";
inline constexpr std::string_view kAwaited = "awaited";
inline constexpr std::string_view kQueued = "queued";
inline constexpr std::string_view kRunning = "running";
inline constexpr std::string_view kLooking = "looking";
inline constexpr std::string_view kWaiting = "waiting";
inline constexpr std::string_view kWarned = "warned";
inline constexpr std::string_view kChecking = "checking";
inline constexpr std::string_view kActing = "acting";

}  // namespace step

/// Why a Schedule never runs.
namespace schedule_fault {

inline constexpr std::string_view kHour = "hour";        ///< not 0 to 23
inline constexpr std::string_view kMinute = "minute";    ///< not 0 to 59
inline constexpr std::string_view kDays = "days";        ///< none
inline constexpr std::string_view kAction = "action";    ///< there is none of this type
inline constexpr std::string_view kProgram = "program";  ///< its module has nothing to run
inline constexpr std::string_view kUntil = "until";      ///< of staying awake: no time of day, or that of its beginning
inline constexpr std::string_view kSleepKind = "kind";   ///< of sleep: there is none of that name
inline constexpr std::string_view kDenied = "denied";    ///< a kind of sleep that the system does not offer now

}  // namespace schedule_fault

/// Why there is no trial, beside what makes a Schedule never run.
namespace trial_fault {

inline constexpr std::string_view kWakeUp = "wake-up";  ///< cannot be tried
inline constexpr std::string_view kNotNow = "not-now";  ///< see Scheduler::tryNow

inline constexpr std::string_view kPaused = "paused";  ///< nothing is carried out now

}  // namespace trial_fault

/// Why there is no pause.
namespace pause_fault {

inline constexpr std::string_view kPast = "past";         ///< it would end before it begins, or has ended
inline constexpr std::string_view kTooFar = "too-far";    ///< it would end more than 366 days ahead
inline constexpr std::string_view kTooMany = "too-many";  ///< there are sixteen others
inline constexpr std::string_view kNotNow = trial_fault::kNotNow;

}  // namespace pause_fault

/// Why an alarm is not to be had.
namespace alarm_fault {

inline constexpr std::string_view kNoClock = "no-clock";
inline constexpr std::string_view kOff = "off";  ///< the daemon runs below a folder of its own
inline constexpr std::string_view kForbidden = "forbidden";
inline constexpr std::string_view kPast = "past";
inline constexpr std::string_view kTooFar = "too-far";
inline constexpr std::string_view kTaken = "taken";    ///< Others: when another program's rings
inline constexpr std::string_view kGone = "gone";      ///< another program has taken it away
inline constexpr std::string_view kMoved = "moved";    ///< the hardware's clock was set. Others: when it would ring
inline constexpr std::string_view kFailed = "failed";  ///< Reason: text

}  // namespace alarm_fault

/// Under `keys::kClock`: nothing runs until it is set, or for ten minutes.
inline constexpr std::string_view kClockBehind = "behind";

/// How an occurrence ended, or what else there is to tell: the codes, each with the keys of its arguments. Texts in
/// arguments have been through `plainText`.
namespace outcome {

// Carried out.
inline constexpr std::string_view kSlept = "slept";                 ///< Until: instant of the awakening
inline constexpr std::string_view kShutDown = "shut-down";          ///< Restart: flag
inline constexpr std::string_view kWokeUp = "woke-up";              ///< woken by our alarm
inline constexpr std::string_view kStarted = "started";             ///< was off until shortly before
inline constexpr std::string_view kAwakeAlready = "awake-already";  ///< kept awake for ten minutes
inline constexpr std::string_view kKeptAwake = "kept-awake";        ///< Until: instant; By: who let it sleep, or none
inline constexpr std::string_view kRan = "ran";                     ///< Seconds; MadeUp: flag, it came later
inline constexpr std::string_view kFailed = "failed";               ///< Seconds; Status; Reason: text, or empty
inline constexpr std::string_view kTimedOut = "timed-out";          ///< Seconds: ended at its limit
inline constexpr std::string_view kNotStarted = "not-started";      ///< Reason: text
inline constexpr std::string_view kUnknown = "unknown";             ///< begun; how it ended is not known

// Not carried out.
inline constexpr std::string_view kMissed = "missed";                   ///< Count (due is the last one's); Cause
inline constexpr std::string_view kSkipped = "skipped";                 ///< By: who said "not this time"
inline constexpr std::string_view kSameMinute = "same-minute";          ///< another shut-down or sleep had that minute
inline constexpr std::string_view kWakesThen = "wakes-then";            ///< a sleep in the minute of a wake-up
inline constexpr std::string_view kWithdrawn = "withdrawn";             ///< its Schedule is no more
inline constexpr std::string_view kGaveUp = "gave-up";                  ///< Hold, Who, Why, Minutes: see below
inline constexpr std::string_view kOvertaken = "overtaken";             ///< By: see below
inline constexpr std::string_view kRefused = "refused";                 ///< Reason: see below, or text; asked twice
inline constexpr std::string_view kLidClosed = "lid-closed";            ///< not woken: closed and on battery
inline constexpr std::string_view kClockCorrected = "clock-corrected";  ///< open when the clock was corrected

// Of no occurrence.
inline constexpr std::string_view kCorrection = "correction";      ///< By: seconds; 0 where it is not known
inline constexpr std::string_view kStateLost = "state-lost";       ///< the stored state could not be read
inline constexpr std::string_view kClockBehind = "clock-behind";   ///< nothing runs yet. By: seconds
inline constexpr std::string_view kPaused = "paused";              ///< over. Count, From, Until, By
inline constexpr std::string_view kBackToSleep = "back-to-sleep";  ///< woken for nothing; asked to sleep again
inline constexpr std::string_view kCannotRun = "cannot-run";       ///< Number: place in the list; Reason. Not stored

// Values of Cause.
inline constexpr std::string_view kCauseOff = "off";
inline constexpr std::string_view kCauseAsleep = "asleep";
inline constexpr std::string_view kCauseDaemon = "daemon";  ///< it was not running
inline constexpr std::string_view kCauseClock = "clock";    ///< set on past it
inline constexpr std::string_view kCauseLate = "late";      ///< none of these: the computer hung

// Values of By in "overtaken".
inline constexpr std::string_view kSleep = "sleep";  ///< the computer went to sleep by itself
inline constexpr std::string_view kDown = "down";    ///< it went down by itself
inline constexpr std::string_view kNext = "next";    ///< the next sleep, shut-down or wake-up came
inline constexpr std::string_view kOther = "other";  ///< one was under way
inline constexpr std::string_view kFirst = "first";  ///< another was waiting, that comes even if nobody is there

// Values of Reason in "refused", and of Why in "gave-up" for kHoldUnknown, where the system gave none.
inline constexpr std::string_view kNoAnswer = "no-answer";
inline constexpr std::string_view kStayedAwake = "stayed-awake";  ///< it said yes and did not sleep
inline constexpr std::string_view kKindDenied = "kind-denied";    ///< the system does not offer that kind of sleep
inline constexpr std::string_view kUnwritten = "unwritten";  ///< that it begins could not be stored; of actions, too

// Values of Reason in "failed" and "not-started", where it is no text of the system's.
inline constexpr std::string_view kNobody = "nobody";         ///< no user at the computer
inline constexpr std::string_view kNoAgent = "no-agent";      ///< the user's does not run
inline constexpr std::string_view kTooMany = "too-many";      ///< actions of that user are running
inline constexpr std::string_view kNoManager = "no-manager";  ///< no service manager on the bus
inline constexpr std::string_view kNoModule = "no-module";    ///< it has gone meanwhile
inline constexpr std::string_view kNoProgram = "no-program";  ///< it could not be executed
inline constexpr std::string_view kNoSandbox = "no-sandbox";  ///< what it was to run in could not be set up
inline constexpr std::string_view kSignal = "signal";         ///< Status is the signal's number
inline constexpr std::string_view kMemory = "memory";         ///< it took more than it may

// Values of Hold: what it waited for, with Who and Why.
inline constexpr std::string_view kHoldInhibitor = "inhibitor";
inline constexpr std::string_view kHoldAction = "action";      ///< Who: the action type that still runs
inline constexpr std::string_view kHoldShutdown = "shutdown";  ///< Who: the kind that somebody has scheduled
inline constexpr std::string_view kHoldUse = "use";            ///< Who: whose session is in use; Why: kUntold, or none
inline constexpr std::string_view kHoldUnknown = "unknown";    ///< Why: the state could not be read

// Value of Why for kHoldUse.
inline constexpr std::string_view kUntold = "untold";  ///< nothing tells for how long that session has not been used

}  // namespace outcome

}  // namespace wire

}  // namespace quorel
