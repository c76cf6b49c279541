#include "kit/Additions.h"

#include <chrono>
#include <cstdint>

namespace quorel {

void clear(View& view) {
    for (const auto& subview : view.subviews()) subview->removeFromSuperview();
}

int hour(const CalendarDate& date) {
    return date.hour;
}

int minute(const CalendarDate& date) {
    return date.minute;
}

CalendarDate dateFromHourMinsFromDate(int hour, int minutes, const CalendarDate& reference) {
    using namespace std::chrono;
    constexpr std::int64_t kMinutesPerDay = std::int64_t{24} * 60;
    const std::int64_t total = std::int64_t{hour} * 60 + minutes;
    std::int64_t dayOffset = total / kMinutesPerDay;
    std::int64_t ofDay = total % kMinutesPerDay;
    if (ofDay < 0) {
        ofDay += kMinutesPerDay;
        --dayOffset;
    }
    const sys_days start = year(reference.year) / month(static_cast<unsigned>(reference.month)) /
                           day(static_cast<unsigned>(reference.day));
    const year_month_day shifted(start + days(dayOffset));
    CalendarDate date;
    date.year = static_cast<int>(shifted.year());
    date.month = static_cast<int>(static_cast<unsigned>(shifted.month()));
    date.day = static_cast<int>(static_cast<unsigned>(shifted.day()));
    date.hour = static_cast<int>(ofDay / 60);
    date.minute = static_cast<int>(ofDay % 60);
    return date;
}

}  // namespace quorel
