#import "appkit/CalendarDates.h"

#include <ctime>

namespace quorel::appkit {

NSTimeZone *wallClockZone() {
    return [NSTimeZone timeZoneForSecondsFromGMT:0];
}

NSDate *dateFromCalendarDate(const CalendarDate &date) {
    std::tm parts{};
    parts.tm_year = date.year - 1900;
    parts.tm_mon = date.month - 1;
    parts.tm_mday = date.day;
    parts.tm_hour = date.hour;
    parts.tm_min = date.minute;
    parts.tm_sec = date.second;
    return [NSDate dateWithTimeIntervalSince1970:static_cast<NSTimeInterval>(timegm(&parts))];
}

CalendarDate calendarDateFromDate(NSDate *date) {
    const auto seconds = static_cast<std::time_t>([date timeIntervalSince1970]);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

NSDateFormatter *timeFormatter() {
    // Kept: making one takes far longer than writing a time, and every row of the table shows one.
    static NSDateFormatter *const formatter = [] {
        NSDateFormatter *made = [[NSDateFormatter alloc] init];
        [made setFormatterBehavior:NSDateFormatterBehavior10_4];
        [made setTimeZone:wallClockZone()];
        [made setDateStyle:NSDateFormatterNoStyle];
        [made setTimeStyle:NSDateFormatterShortStyle];
        return made;
    }();
    return formatter;
}

}  // namespace quorel::appkit
