#pragma once

#include "scheduler/Calendar.h"

namespace quorel {

/// The system's time zone as the C library knows it: /etc/localtime, or the environment's TZ. One thread.
class SystemCalendar : public Calendar {
public:
    SystemCalendar() { refresh(); }

    std::optional<Instant> instantOf(LocalDate date, int hour, int minute) const override;
    LocalDate dateOf(Instant instant) const override;
    void refresh() override;

private:
    /// How far the wall clock is ahead of UTC around the day last asked about.
    struct Day {
        LocalDate date{};
        Seconds before = 0;  ///< a day earlier
        Seconds after = 0;   ///< a day later
    };
    mutable Day _day;
    mutable bool _known = false;
};

}  // namespace quorel
