#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

#include "model/Wire.h"

namespace quorel {

/// Where an occurrence stands.
enum class Step {
    kPlanned,  ///< nothing has happened yet
    kSkipped,  ///< "not this time", its minute yet to come
    kDone,     ///< ended before its minute, which is yet to come; its outcome is told
    kPostponed,
    kMakeUp,        ///< missed, and to run soon
    kAwaited,       ///< found nobody to run for, and may run until `at`
    kQueued,        ///< its time has come; begins when others have ended, or when that can be written down
    kRunning,       ///< a module's action
    kStayingAwake,  ///< the computer is kept awake until `at`; to others it runs
    // In course, sleep and shut-down:
    kLooking,   ///< may it be? Asked, not yet answered
    kWaiting,   ///< something holds it up
    kWarned,    ///< people see it coming
    kChecking,  ///< the last look before the call
    kActing,    ///< the system was asked for it
};

/// The columns of the table of events.
enum class Column {
    kPlanned,
    kSkipped,
    kDone,
    kPostponed,
    kMakeUp,
    kAwaited,
    kInCourse,
    kActing,
    kRunning,
    kStayingAwake
};

/// When a step is looked at again without anything else happening.
enum class NextCall {
    kNever,
    kAtItsMinute,  ///< that of its Schedule
    kAtItsTime,
    kInTime,    ///< its time; for a sleep or shut-down as much earlier as people are warned
    kInCourse,  ///< its course says
};

struct StepRow {
    Step step;
    std::string_view name;  ///< as it is stored and sent
    Column column;
    NextCall next;
    bool armsAlarms;  ///< the computer is woken and started for it
};

inline constexpr StepRow kSteps[] = {
    // clang-format off
    {Step::kPlanned,   wire::step::kPlanned,   Column::kPlanned,    NextCall::kNever,       true},
    {Step::kSkipped,   wire::step::kSkipped,   Column::kSkipped,    NextCall::kAtItsMinute, false},
    {Step::kDone,      wire::step::kDone,      Column::kDone,       NextCall::kAtItsMinute, false},
    {Step::kPostponed, wire::step::kPostponed, Column::kPostponed,  NextCall::kInTime,      true},
    {Step::kMakeUp,    wire::step::kMakeUp,    Column::kMakeUp,     NextCall::kAtItsTime,   true},
    {Step::kAwaited,   wire::step::kAwaited,   Column::kAwaited,    NextCall::kAtItsTime,   false},
    {Step::kQueued,    wire::step::kQueued,    Column::kMakeUp,     NextCall::kAtItsTime,   false},
    {Step::kRunning,   wire::step::kRunning,   Column::kRunning,    NextCall::kNever,       false},
    {Step::kStayingAwake, wire::step::kRunning, Column::kStayingAwake, NextCall::kAtItsTime, false},
    {Step::kLooking,   wire::step::kLooking,   Column::kInCourse,   NextCall::kInCourse,    false},
    {Step::kWaiting,   wire::step::kWaiting,   Column::kInCourse,   NextCall::kInCourse,    false},
    {Step::kWarned,    wire::step::kWarned,    Column::kInCourse,   NextCall::kInCourse,    false},
    {Step::kChecking,  wire::step::kChecking,  Column::kInCourse,   NextCall::kInCourse,    false},
    {Step::kActing,    wire::step::kActing,    Column::kActing,     NextCall::kInCourse,    false},
    // clang-format on
};

constexpr const StepRow& rowOf(Step step) {
    return kSteps[static_cast<std::size_t>(step)];
}
constexpr std::string_view nameOf(Step step) {
    return rowOf(step).name;
}
static_assert(std::ranges::all_of(kSteps, [](const StepRow& row) { return &row == &rowOf(row.step); }));

}  // namespace quorel
