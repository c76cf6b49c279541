#pragma once

#include <algorithm>

#include "scheduler/Step.h"

namespace quorel {

/// What can happen to an occurrence that is open, beyond the answers to what it has asked for itself.
enum class Event {
    kTimeComes,  ///< when its step says
    kWakeUpComes,
    kPowerComes,  ///< a sleep or shut-down comes into course
    kGoesToSleep,
    kAwakeAgain,   ///< and has slept
    kStayedAwake,  ///< it was going to sleep or down, and did not
    kGoesDown,
    kServiceStarts,
    kClockSetOn,
    kClockSetBack,
    kClockWasAhead,  ///< set back soon after the boot
    kClockCorrected,
    kScheduleGone,
    kInput,
    kAgentComes,  ///< actions can run for a user for whom they could not before
    kLastActionEnds,
    kPaused,  ///< a pause has begun, or goes on
    kSkip,
    kUnskip,  ///< a skip is taken back
    kPostpone,
    kWokenInBag,  ///< by our alarm, lid closed, no external power
};

/// What becomes of it.
enum class Fate {
    kStays,
    kAsItsTimeComes,    ///< if its time has passed
    kForgotten,         ///< it was told already
    kSkippedForGood,    ///< ends, skipped
    kRuns,              ///< up to two minutes late; later missed, or made up
    kRunsWhileItMay,    ///< while the seconds of its module last; later missed
    kNobodyCame,        ///< ends, not started
    kNextMove,          ///< of its course
    kGivenUpIfSoon,     ///< a sleep within ten minutes gives way to the wake-up
    kGivenUpForWakeUp,  ///< a sleep up to the wake-up's minute gives way, and a shut-down from before it
    kGivenUpForNext,    ///< gives way to the next sleep or shut-down; a firm one makes an "only when idle" one end
    kNewcomerEnds,
    kSleepOvertaken,  ///< a sleep ends: the computer sleeps without it
    kOvertakenByDown,
    kShutDownOrOvertaken,  ///< a shut-down has done it; a sleep is overtaken
    kShutDownAnew,         ///< a shut-down begins anew with a full warning up to two minutes late, later it is missed
    kSleptOrAnew,          ///< a sleep has done it; a shut-down as in kShutDownAnew
    kSleepRefused,         ///< a sleep tries again, or ends
    kSoonWhileItMay,       ///< two minutes from now, while the seconds of its module last
    kMissedIfBeforeBoot,   ///< a sleep or shut-down of before the boot is missed; else as its time comes
    kGoesOnOrAnew,         ///< see Scheduler::goOn
    kUnknown,              ///< ends: it may have happened, and is not repeated
    kAskedFor,             ///< whoever runs it is asked
    kSecondsGoOn,          ///< what is measured goes on as it was
    kPlannedAgain,         ///< more than a minute ahead: planned or postponed, as before its course; else seconds go on
    kEndsUnlessAhead,
    kCorrected,     ///< ends
    kWithdrawn,     ///< ends
    kMakeUpSoon,    ///< in ten seconds
    kWaitsIfIdle,   ///< a warned "only when idle" one waits
    kLooksAtOnce,   ///< what waits for an action does
    kSkipped,       ///< until its minute
    kPlannedAnew,   ///< with a full warning, while its minute lies ahead
    kPostponed,     ///< by as much as was asked for, from its time or from now
    kPaused,        ///< ends, and counts in the pause; while its time is ahead as before its course
    kRefused,       ///< not allowed, or too late
    kLetsSleep,     ///< ends: the computer may fall asleep
    kReckonedAnew,  ///< until when it stays awake, by the clock as it is now; ends where that is no time of its own
    kLidClosed,     ///< what the computer was woken for within the minute ends
};

struct EventRow {
    Event event;
    Fate planned, skipped, postponed, makeUp, awaited, inCourse, acting, running, stayingAwake;
};

namespace event_table {

using enum Fate;

/// Events by steps: the one place that says what becomes of what is open. docs/schedules.md has it in words. An
/// occurrence that is done, told of before its minute, is remembered until then and changed by nothing.
inline constexpr EventRow kRows[] = {
    // clang-format off
    //                        planned, skipped, postponed, make-up or queued, awaited,
    //                        in course, acting, running, staying awake
    {Event::kTimeComes,       kStays, kSkippedForGood, kRuns, kRunsWhileItMay, kNobodyCame,
                              kNextMove, kNextMove, kStays, kLetsSleep},
    {Event::kWakeUpComes,     kStays, kStays, kGivenUpIfSoon, kStays, kStays,
                              kGivenUpForWakeUp, kStays, kStays, kStays},
    {Event::kPowerComes,      kStays, kStays, kStays, kStays, kStays,
                              kGivenUpForNext, kNewcomerEnds, kStays, kStays},
    {Event::kGoesToSleep,     kStays, kStays, kStays, kStays, kStays,
                              kSleepOvertaken, kStays, kStays, kStays},
    {Event::kAwakeAgain,      kStays, kAsItsTimeComes, kAsItsTimeComes, kSoonWhileItMay, kStays,
                              kShutDownAnew, kSleptOrAnew, kStays, kAsItsTimeComes},
    {Event::kStayedAwake,     kStays, kStays, kStays, kStays, kStays,
                              kStays, kSleepRefused, kStays, kStays},
    {Event::kGoesDown,        kStays, kStays, kStays, kStays, kStays,
                              kOvertakenByDown, kShutDownOrOvertaken, kStays, kStays},
    {Event::kServiceStarts,   kStays, kAsItsTimeComes, kMissedIfBeforeBoot, kStays, kStays,
                              kGoesOnOrAnew, kUnknown, kAskedFor, kAsItsTimeComes},
    {Event::kClockSetOn,      kStays, kAsItsTimeComes, kAsItsTimeComes, kSecondsGoOn, kStays,
                              kSecondsGoOn, kSecondsGoOn, kSecondsGoOn, kAsItsTimeComes},
    {Event::kClockSetBack,    kStays, kStays, kStays, kSecondsGoOn, kStays,
                              kPlannedAgain, kSecondsGoOn, kSecondsGoOn, kStays},
    {Event::kClockWasAhead,   kStays, kEndsUnlessAhead, kEndsUnlessAhead, kCorrected, kCorrected,
                              kCorrected, kSecondsGoOn, kSecondsGoOn, kReckonedAnew},
    {Event::kClockCorrected,  kStays, kEndsUnlessAhead, kEndsUnlessAhead, kCorrected, kCorrected,
                              kCorrected, kSecondsGoOn, kSecondsGoOn, kReckonedAnew},
    {Event::kScheduleGone,    kStays, kWithdrawn, kWithdrawn, kWithdrawn, kWithdrawn,
                              kWithdrawn, kStays, kStays, kLetsSleep},
    {Event::kInput,           kStays, kStays, kStays, kStays, kMakeUpSoon,
                              kWaitsIfIdle, kStays, kStays, kStays},
    {Event::kAgentComes,      kStays, kStays, kStays, kStays, kMakeUpSoon,
                              kStays, kStays, kStays, kStays},
    {Event::kLastActionEnds,  kStays, kStays, kStays, kStays, kStays,
                              kLooksAtOnce, kStays, kStays, kStays},
    {Event::kPaused,          kStays, kStays, kStays, kStays, kStays,
                              kPaused, kStays, kStays, kStays},
    {Event::kSkip,            kSkipped, kStays, kSkipped, kSkipped, kSkipped,
                              kSkipped, kRefused, kRefused, kLetsSleep},
    {Event::kUnskip,          kRefused, kPlannedAnew, kRefused, kRefused, kRefused,
                              kRefused, kRefused, kRefused, kRefused},
    {Event::kPostpone,        kPostponed, kRefused, kPostponed, kPostponed, kRefused,
                              kPostponed, kRefused, kRefused, kRefused},
    {Event::kWokenInBag,      kLidClosed, kStays, kLidClosed, kLidClosed, kLidClosed,
                              kLidClosed, kStays, kStays, kStays},
    // clang-format on
};

}  // namespace event_table

constexpr const EventRow& rowOf(Event event) {
    return event_table::kRows[static_cast<std::size_t>(event)];
}
static_assert(std::ranges::all_of(event_table::kRows, [](const EventRow& row) { return &row == &rowOf(row.event); }));

constexpr Fate fateOf(Event event, Step step) {
    const EventRow& row = rowOf(event);
    switch (rowOf(step).column) {
        case Column::kPlanned:
            return row.planned;
        case Column::kSkipped:
            return row.skipped;
        case Column::kPostponed:
            return row.postponed;
        case Column::kMakeUp:
            return row.makeUp;
        case Column::kAwaited:
            return row.awaited;
        case Column::kInCourse:
            return row.inCourse;
        case Column::kActing:
            return row.acting;
        case Column::kRunning:
            return row.running;
        case Column::kStayingAwake:
            return row.stayingAwake;
        case Column::kDone:
            break;
    }
    if (event == Event::kTimeComes) return Fate::kForgotten;
    const bool isAsked = event == Event::kSkip || event == Event::kUnskip || event == Event::kPostpone;
    return isAsked ? Fate::kRefused : Fate::kStays;
}

}  // namespace quorel
