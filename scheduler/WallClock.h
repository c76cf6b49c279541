#pragma once

#include <optional>

#include "scheduler/EventTable.h"
#include "scheduler/Instant.h"

namespace quorel {

/// The wall clock: whether it is to be trusted yet, and what it means that it was set. After a boot it shows what the
/// hardware clock says, which may be hours off until the network has set it.
class WallClock {
public:
    struct Change {
        Event event;
        Seconds by;
    };

    /// The service starts. `watermark`: what was stored has been taken up to there.
    void start(ClockReading now, Instant watermark);
    /// What the clocks show now, and the watermark. How the wall clock was set since they were last read; what happens
    /// to a clock that is not trusted yet means nothing.
    std::optional<Change> observe(ClockReading now, Instant watermark);
    /// Everything of this moment has been seen to.
    void settled() { _waited = 0; }

    bool isTrusted() const { return !_doubtUntil; }
    /// Since it was last read.
    bool wasSet() const { return _wasSet; }
    /// Hours behind what is known to have been.
    bool isBehind() const;
    Seconds behindBy() const { return _watermark - now(); }
    /// When to ask again whether it is to be trusted.
    Instant nextQuestion() const;

    const ClockReading& read() const { return _now; }
    Instant now() const { return _now.instant(); }
    Instant bootInstant() const { return (_now.wall - _now.boot) / 1000; }
    /// Too late to run. What was not when the service started is not by its waiting for the clock.
    bool isLate(Instant due) const { return due <= lateUpTo(); }
    Instant lateUpTo() const;
    /// Up to then the clock may turn out to have been ahead.
    Instant youngUntil() const;

private:
    ClockReading _now;
    std::int64_t _offset = 0;  ///< wall clock ahead of boot clock, in milliseconds
    Instant _watermark = 0;
    std::int64_t _startedAt = 0;              ///< boot clock
    std::optional<std::int64_t> _doubtUntil;  ///< boot clock
    bool _wasBehind = false;
    bool _wasSet = false;
    Seconds _waited = 0;  ///< for the clock, just now
};

}  // namespace quorel
