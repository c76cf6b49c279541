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
    bool isBrief = false;    ///< no change of the plan, when it was set; so is its end
    std::int64_t count = 0;  ///< of what was due in it so far
    bool isEnded = false;    ///< somebody has ended it, and what was due in it may not have been counted yet

    /// What it goes by outside. Of two that are set no token is the same.
    std::string token() const;
};

/// One that is asked for, in full: without a beginning from now on, without an end until early tomorrow morning. It is
/// brief where it begins now and ends by the morning after: whoever is at the computer may set such a one, and end it.
Pause completed(Pause wanted, Instant now, const Calendar& calendar);
/// Why it cannot be, whatever others are set: one of `wire::pause_fault`. Empty where it can.
std::string_view faultOf(const Pause& pause, Instant now);

/// The pauses that are set, by their beginnings. Those of one person and one right that overlap are one; others stand
/// side by side, and what is due within any of them is left out.
class Pauses {
public:
    struct Answer {
        Pause pause = {};             ///< joined with the same person's that it overlaps
        std::string_view fault = {};  ///< why there is none: one of `wire::pause_fault`
    };
    Answer add(Instant now, Pause pause);
    /// Of that token; all for an empty one, or all brief ones. False where there is none. They stay until `over` has
    /// them.
    bool end(Instant now, const std::string& token, bool onlyBrief = false);
    /// The clock was not to be trusted before: those that were ended end now.
    void clockTrusted(Instant now);

    const std::vector<Pause>& all() const { return _pauses; }
    /// Those that are not over.
    std::vector<Pause> standing(Instant now) const;
    void restore(std::vector<Pause> pauses) { _pauses = std::move(pauses); }
    /// Whether an instant is within one.
    bool cover(Instant instant) const { return around(instant) != nullptr; }
    /// The first instant from one on that is within none.
    Instant firstFree(Instant instant) const;
    /// The last up to one that is within none.
    Instant lastFree(Instant instant) const;
    /// Something is due then, or `by` -1 comes again. It counts in one of them.
    void count(Instant instant, int by = 1);
    /// The next that is over by then; it is gone. Of those that nobody has ended none before `forgets`.
    std::optional<Pause> over(Instant now, Instant forgets);
    /// When the next begins or ends; those that are over, at `forgets`.
    std::optional<Instant> next(Instant now, Instant forgets) const;

private:
    const Pause* around(Instant instant) const;

    std::vector<Pause> _pauses;
};

}  // namespace quorel
