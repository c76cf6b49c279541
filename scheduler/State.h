#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/Value.h"
#include "scheduler/Occurrence.h"
#include "scheduler/Pauses.h"
#include "scheduler/PowerCourse.h"

namespace quorel {

/// An occurrence that something has happened to.
struct OpenOccurrence {
    Occurrence occurrence;
    Step step = Step::kPlanned;
    Instant at = 0;       ///< when it is to happen, in kRunning did begin, in kStayingAwake ends
    std::string by = {};  ///< who skipped or postponed it
    bool madeUp = false;
    std::optional<PowerCourse> course = {};  ///< of a sleep or shut-down whose time has come
    PowerCourse::Waited waited = {};         ///< by the course, as it is stored
    Ticket ticket = 0;                       ///< of its last question
    bool begins = false;                     ///< as soon as the state is stored
    Instant unwrittenSince = 0;              ///< in kQueued: that it begins could not be stored

    bool isSleep() const { return occurrence.schedule->kind == ActionKind::kSleep; }
    bool writesMemory() const { return isSleep() && occurrence.schedule->sleepKind != SleepKind::kSuspend; }
    /// What it goes by outside: its time is part of it once it has been moved.
    std::string token() const;
};

/// What outlives the program.
struct StoredState {
    struct Open {
        std::string action;  ///< enough to tell of it when its Schedule is no more
        std::uint64_t digest = 0;
        Instant due = 0;
        Instant at = 0;
        unsigned weekday = 0;
        Step step = Step::kPlanned;  ///< kActing for one that this version does not know: it may have happened
        std::string by;
        bool madeUp = false;
        Instant next = 0;  ///< of its course
        PowerCourse::Waited waited;
    };
    Instant watermark = 0;   ///< everything up to here has been taken up
    Instant awakeUntil = 0;  ///< the end of the ten minutes after a wake-up
    std::string bootId;
    std::int64_t slept = 0;  ///< time spent asleep since boot, in milliseconds
    std::vector<Open> open;
    std::vector<Pause> pauses;
    Array outcomes;  ///< as Outcome::value has them

    Value value() const;
    /// Also what version 1.0 has written. Nothing where the value is no state that this version understands.
    static std::optional<StoredState> from(const Value& value);
};

/// Adds one to the last 500.
void keepOutcome(Array& outcomes, Value outcome);

}  // namespace quorel
