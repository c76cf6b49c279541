#pragma once

namespace quorel {

/// A date and time of day on the wall clock of the local time zone.
struct CalendarDate {
    int year = 1970;
    int month = 1;   ///< 1 to 12
    int day = 1;     ///< 1 to 31
    int hour = 0;    ///< 0 to 23
    int minute = 0;  ///< 0 to 59
    int second = 0;  ///< 0 to 59
    friend bool operator==(const CalendarDate&, const CalendarDate&) = default;
};

}  // namespace quorel
