#pragma once

#include <chrono>
#include <optional>

#include "scheduler/Instant.h"

namespace quorel {

/// A date on the wall clock; knows its weekday by itself.
using LocalDate = std::chrono::local_days;

/// The wall clock of one time zone.
class Calendar {
public:
    virtual ~Calendar() = default;

    /// When the wall clock shows this hour (0 to 23) and minute (0 to 59) of that day: the first time if it does so
    /// twice. A time that the clock leaps over is as much later as it leaps (02:30 becomes 03:30). Nothing for a day
    /// that does not exist.
    virtual std::optional<Instant> instantOf(LocalDate date, int hour, int minute) const = 0;
    virtual LocalDate dateOf(Instant instant) const = 0;
    /// Takes over the zone that the system has now. Until then all answers are those of the zone before.
    virtual void refresh() = 0;
};

}  // namespace quorel
