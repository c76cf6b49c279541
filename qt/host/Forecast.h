#pragma once

#include <string>

#include "linux/time/SystemCalendar.h"
#include "scheduler/World.h"

namespace quorel::qt {

/// When a Schedule of the list, saved or not, comes next, by the rules of the daemon. Main thread.
class Forecast {
public:
    struct Answer {
        std::optional<Instant> at;  ///< nothing: never
        std::string fault;          ///< why it never comes, or empty where it is only switched off
        bool isOff = false;
    };
    Answer of(const Value& schedule) const;

private:
    SystemCalendar _calendar;
};

}  // namespace quorel::qt
