#pragma once

#include <chrono>
#include <optional>

#include "model/Value.h"

namespace quorel {

/// Decides when the next periodic update check is due. Pure: time comes in as an argument. One thread.
class CheckInterval {
public:
    using Time = std::chrono::sys_seconds;

    /// The preferences are read again, and a failed check is repeated, after this time.
    static constexpr std::chrono::seconds kLookInterval = std::chrono::hours(1);

    explicit CheckInterval(std::optional<Time> lastCheck) : _lastCheck(lastCheck) {}

    /// Absent without a file: then the checks are on and daily, as the settings pane shows it.
    void setPreferences(const Value& preferences);
    /// Of any check, asked for by hand or not.
    void checkEnded(Time now, bool succeeded);

    bool isDue(Time now) const;
    /// How long nothing will happen; at most kLookInterval, never negative.
    std::chrono::seconds timeToNextLook(Time now) const;
    /// The last one that succeeded.
    std::optional<Time> lastCheck() const { return _lastCheck; }

private:
    enum class Frequency { kDaily, kWeekly, kMonthly };

    /// When the next check may run; nothing when there is no reason to wait.
    std::optional<Time> nextCheck(Time now) const;

    bool _enabled = true;
    Frequency _frequency = Frequency::kDaily;
    std::optional<Time> _lastCheck;
    std::optional<Time> _lastFailure;
};

}  // namespace quorel
