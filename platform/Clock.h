#pragma once

#include <string>

#include "model/CalendarDate.h"

namespace quorel {

/// The current date and the user's way of writing times. Main thread.
class Clock {
public:
    virtual ~Clock() = default;
    virtual CalendarDate currentDate() const = 0;
    /// Time of day in the user's short style: "23:00" or "11:00 PM".
    virtual std::string shortTimeString(const CalendarDate& date) const = 0;
};

}  // namespace quorel
