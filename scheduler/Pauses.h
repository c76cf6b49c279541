#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "scheduler/Calendar.h"
#include "scheduler/Instant.h"

namespace quorel {

/// What is due from one instant on, and before another, is not carried out.
struct Pause {
    Instant from = 0;
    Instant until = 0;
    std::string by = {};     ///< who has set it
    std::int64_t count = 0;  ///< of what was due in it so far
};

/// One that is asked for, in full: without a beginning from now on, without an end until early tomorrow morning.
Pause completed(Pause wanted, Instant now, const Calendar& calendar);
/// One that is no change of the plan: it has begun, or begins now, and ends by the morning after it began. Whoever is
/// at the computer may set it and end it.
bool isBrief(const Pause& pause, Instant now, const Calendar& calendar);

/// The pauses that are set, by time. No two of them overlap.
class Pauses {
public:
    struct Answer {
        Pause pause = {};             ///< joined with those that it overlaps
        std::string_view fault = {};  ///< why there is none: one of `wire::pause_fault`
    };
    Answer add(Instant now, Pause pause);
    /// Why it would not be added; empty where it would.
    std::string_view faultOf(Instant now, const Pause& pause) const;
    /// The one that began or begins then. Nothing where there is none.
    std::optional<Pause> remove(Instant from);

    const std::vector<Pause>& all() const { return _pauses; }
    void restore(std::vector<Pause> pauses) { _pauses = std::move(pauses); }
    /// The one around an instant, or null. Adding and removing end the pointer's life.
    const Pause* around(Instant instant) const;
    /// Something is due then, within a pause.
    void count(Instant instant);
    /// The next that is over by then; it is gone.
    std::optional<Pause> over(Instant now);
    /// When the next begins or ends.
    std::optional<Instant> next(Instant now) const;

private:
    std::vector<Pause> _pauses;
};

}  // namespace quorel
