#pragma once

#include <cstdint>

namespace quorel {

/// A moment on the clock that can be set: whole seconds since 1970-01-01 00:00 UTC.
using Instant = std::int64_t;
/// A stretch of time in seconds.
using Seconds = std::int64_t;

inline constexpr Seconds kMinute = 60;
inline constexpr Seconds kHour = 60 * kMinute;
inline constexpr Seconds kDay = 24 * kHour;

/// The system's clocks, read together, in milliseconds. What happened between two readings is told by how they moved
/// against each other: `wall` against `boot` when the clock was set, `boot` against `awake` when the computer slept.
struct ClockReading {
    std::int64_t wall = 0;     ///< CLOCK_REALTIME
    std::int64_t boot = 0;     ///< CLOCK_BOOTTIME: goes on while the computer sleeps
    std::int64_t awake = 0;    ///< CLOCK_MONOTONIC: stands still while it sleeps
    bool synchronised = true;  ///< the wall clock, as the kernel says

    /// Time spent asleep since boot, in milliseconds.
    std::int64_t asleep() const { return boot - awake; }
    Instant instant() const { return wall >= 0 ? wall / 1000 : (wall - 999) / 1000; }
};

}  // namespace quorel
