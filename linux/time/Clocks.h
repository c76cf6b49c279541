#pragma once

#include <ctime>

#include "scheduler/Instant.h"

namespace quorel {

/// The system's clocks. Tests have others, whose hours are short and which say by themselves how long was slept.
class Clocks {
public:
    virtual ~Clocks() = default;

    virtual ClockReading now() const;
    /// When CLOCK_REALTIME will show it.
    virtual timespec realTimeOf(Instant instant) const { return {instant, 0}; }
};

}  // namespace quorel
