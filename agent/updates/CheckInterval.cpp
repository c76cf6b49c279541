#include "agent/updates/CheckInterval.h"

#include <algorithm>

#include "model/Preferences.h"

namespace quorel {

namespace {

using namespace std::chrono;

/// The same time of day a month later, on the month's last day where the day does not exist.
sys_seconds monthAfter(sys_seconds time) {
    const auto day = floor<days>(time);
    year_month_day date = year_month_day(day) + months(1);
    if (!date.ok()) date = date.year() / date.month() / last;
    return sys_days(date) + (time - day);
}

}  // namespace

void CheckInterval::setPreferences(const Value& preferences) {
    _enabled = preferences.isAbsent() || preferences[preferences::kCheckUpdates].intValue() != 0;
    switch (preferences[preferences::kCheckUpdatesFrequency].intValue()) {
        case 1:
            _frequency = Frequency::kWeekly;
            break;
        case 2:
            _frequency = Frequency::kMonthly;
            break;
        default:
            _frequency = Frequency::kDaily;
            break;
    }
}

void CheckInterval::checkEnded(Time now, bool succeeded) {
    (succeeded ? _lastCheck : _lastFailure) = now;
}

std::optional<CheckInterval::Time> CheckInterval::nextCheck(Time now) const {
    std::optional<Time> next;
    // A time ahead of now is of no use: the clock has been set back since.
    if (_lastCheck && *_lastCheck <= now) {
        switch (_frequency) {
            case Frequency::kDaily:
                next = *_lastCheck + days(1);
                break;
            case Frequency::kWeekly:
                next = *_lastCheck + weeks(1);
                break;
            case Frequency::kMonthly:
                next = monthAfter(*_lastCheck);
                break;
        }
    }
    if (_lastFailure && *_lastFailure <= now)
        next = std::max(next.value_or(Time::min()), *_lastFailure + kLookInterval);
    return next;
}

bool CheckInterval::isDue(Time now) const {
    return _enabled && nextCheck(now).value_or(now) <= now;
}

seconds CheckInterval::timeToNextLook(Time now) const {
    if (!_enabled) return kLookInterval;
    return std::clamp(nextCheck(now).value_or(now) - now, seconds(0), kLookInterval);
}

}  // namespace quorel
