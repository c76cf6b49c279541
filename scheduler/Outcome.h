#pragma once

#include <string>
#include <string_view>

#include "model/Dictionary.h"
#include "model/PlainText.h"
#include "scheduler/Instant.h"

namespace quorel {

/// How an occurrence ended, or what else there is to tell. Data only: whoever shows it makes the sentence.
struct Outcome {
    std::string code;    ///< one of those below
    Instant at = 0;      ///< when this was found out
    Instant due = 0;     ///< when the occurrence was due; 0 where there is none
    std::string action;  ///< its action type; empty where there is no occurrence
    Dictionary arguments;

    /// As it is stored and sent: "Code", "At", "Due", "Action" and "Arguments".
    Value value() const;
};

/// The codes, each with its arguments. Texts in arguments have been through `plainText`.
namespace outcome {

// Carried out.
inline constexpr std::string_view kSlept = "slept";                 ///< Until: instant of the awakening
inline constexpr std::string_view kShutDown = "shut-down";          ///< Restart: flag
inline constexpr std::string_view kWokeUp = "woke-up";              ///< woken by our alarm
inline constexpr std::string_view kStarted = "started";             ///< was off until shortly before
inline constexpr std::string_view kAwakeAlready = "awake-already";  ///< kept awake for ten minutes
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
inline constexpr std::string_view kGaveUp = "gave-up";                  ///< Hold, Who, Why, Minutes: see `Hold`
inline constexpr std::string_view kOvertaken = "overtaken";             ///< By: see below
inline constexpr std::string_view kRefused = "refused";                 ///< Reason: see below, or text; asked twice
inline constexpr std::string_view kLidClosed = "lid-closed";            ///< not woken: closed and on battery
inline constexpr std::string_view kClockCorrected = "clock-corrected";  ///< open when the clock was corrected

// Of no occurrence.
inline constexpr std::string_view kCorrection = "correction";      ///< By: seconds; 0 where it is not known
inline constexpr std::string_view kStateLost = "state-lost";       ///< the stored state could not be read
inline constexpr std::string_view kClockBehind = "clock-behind";   ///< nothing runs yet. By: seconds
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
inline constexpr std::string_view kFirst =
    "first";  ///< another was waiting, that comes whether or not anybody is there

// Values of Reason in "refused", and of Why in "gave-up" for kHoldUnknown, where the system gave none.
inline constexpr std::string_view kNoAnswer = "no-answer";
inline constexpr std::string_view kStayedAwake = "stayed-awake";  ///< it said yes and did not sleep
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

/// How a module's program ended: each the outcome of that name.
enum class ActionEnd { kRan, kFailed, kTimedOut, kNotStarted, kUnknown };
inline constexpr std::string_view kActionEnds[] = {outcome::kRan, outcome::kFailed, outcome::kTimedOut,
                                                   outcome::kNotStarted, outcome::kUnknown};

}  // namespace quorel
