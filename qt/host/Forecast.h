#pragma once

#include <string>

#include "linux/bus/DaemonView.h"
#include "linux/time/SystemCalendar.h"
#include "scheduler/World.h"

namespace quorel::qt {

/// When a Schedule of the list, saved or not, comes next, by the rules of the daemon. Main thread.
class Forecast {
public:
    struct Answer {
        std::optional<Instant> at;  ///< nothing: never
        std::string reason;         ///< of a fault, as `wire::schedule_fault` has it
        std::string fault;          ///< why it never comes, or will not do; empty where it is only switched off
        bool isOff = false;
    };

    /// By what the daemon tells of pauses, skips and postponements, and the system of kinds of sleep.
    Answer of(const Value& schedule, const DaemonView::Told& told, const DeniedKinds& denied) const;

private:
    SystemCalendar _calendar;
};

}  // namespace quorel::qt
