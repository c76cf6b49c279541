#include "linux/time/SystemCalendar.h"

#include <ctime>

namespace quorel {

namespace {

/// How far the wall clock is ahead of UTC.
Seconds offsetAt(Instant instant) {
    const std::time_t time = instant;
    std::tm local{};
    return localtime_r(&time, &local) ? local.tm_gmtoff : 0;
}

}  // namespace

// The C library's own mktime is not asked: what it makes of a time that does not exist depends on what it was asked
// before.
std::optional<Instant> SystemCalendar::instantOf(LocalDate date, int hour, int minute) const {
    const Instant midnight = std::chrono::seconds(date.time_since_epoch()).count();
    if (!_known || date != _day.date) {
        // No zone is a day ahead or behind, so the whole day lies between.
        _day = {date, offsetAt(midnight - kDay), offsetAt(midnight + 2 * kDay)};
        _known = true;
    }
    const Instant wanted = midnight + hour * kHour + minute * kMinute;
    const Instant early = wanted - _day.before;
    if (_day.before == _day.after || offsetAt(early) == _day.before) return early;
    const Instant late = wanted - _day.after;
    if (offsetAt(late) == _day.after) return late;
    // Nobody's clock showed it. As an early clock would have counted on it is later by the leap; a leap of a whole day
    // leaves out the day itself.
    if (_day.after - _day.before >= kDay) return std::nullopt;
    return early;
}

LocalDate SystemCalendar::dateOf(Instant instant) const {
    const std::chrono::seconds shown(instant + offsetAt(instant));
    return LocalDate(std::chrono::floor<std::chrono::days>(shown));
}

void SystemCalendar::refresh() {
    tzset();
    _known = false;
}

}  // namespace quorel
