#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/time/SystemCalendar.h"
#include "model/Value.h"
#include "planning/ActionWords.h"
#include "scheduler/Occurrence.h"
#include "scheduler/Pauses.h"

namespace quorel {

/// When the Schedules of a list come next, by the list and the pauses alone: what was skipped or postponed, the daemon
/// knows.
class Forecast {
public:
    /// The pauses and the faults as the daemon tells them, who knows more of what can be run.
    Forecast(const Array& schedules, const ActionWords& actions, const Array& pauses, const Array& faults = {});

    /// By its place in the list, from 0: the next after an instant. Nothing where it never comes.
    std::optional<Instant> next(std::size_t index, Instant now) const;
    /// The same as skip and postpone name it, where the daemon has it as it was planned. Empty where it never comes.
    std::string token(std::size_t index, Instant now) const;
    /// Why an enabled one never runs, in the daemon's words; absent where it does.
    const Value& fault(std::size_t index) const { return _entries[index].fault; }
    /// Which Schedule of the list an occurrence is of, from 0, by its token and when it was due; of equal ones the
    /// first.
    std::optional<std::size_t> indexOf(const std::string& token, Instant due) const;

private:
    struct Entry {
        std::string action;                              // in plain text
        std::shared_ptr<const ScheduleReading> reading;  // null where it never comes
        Value fault;
    };
    std::optional<Occurrence> after(std::size_t index, Instant instant) const;
    static std::vector<Entry> read(const Array& schedules, const ActionWords& actions);

    SystemCalendar _calendar;
    std::vector<Entry> _entries;
    Pauses _pauses;
};

}  // namespace quorel
