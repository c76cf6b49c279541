#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "scheduler/Instant.h"
#include "scheduler/ScheduleReading.h"

namespace quorel {

/// A Schedule at an instant. Schedules have no identifier: an occurrence is known by its instant and what its Schedule
/// says. Equal Schedules are one.
struct Occurrence {
    Instant due = 0;
    std::shared_ptr<const ScheduleReading> schedule;  ///< never null
    unsigned weekday = 0;                             ///< of the wall clock's date, 0 is Monday

    /// The name that it goes by outside: lower-case letters, digits and hyphens. Also good as part of a unit's name.
    std::string token() const;
    bool isSameAs(const Occurrence& other) const {
        return due == other.due && schedule->digest == other.schedule->digest;
    }
};

}  // namespace quorel
