#include "words/WhenText.h"

#include <array>
#include <chrono>
#include <ctime>

#include "words/Language.h"

namespace quorel {

namespace {

constexpr int kDaysByName = 7;

std::tm localTime(Instant instant) {
    const std::time_t time = instant;
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

/// Days since an unimportant one, of the wall clock.
std::int64_t dayNumber(const std::tm& local) {
    return std::chrono::sys_days(std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday)
        .time_since_epoch()
        .count();
}

std::string inText(Seconds seconds) {
    const Seconds minutes = (seconds + 30) / kMinute;
    const std::string hours = std::to_string(minutes / 60), rest = std::to_string(minutes % 60);
    if (minutes < 1) return translated("in less than a minute");
    if (minutes < 60) return filled(translated("in {1} min"), {rest});
    return minutes % 60 == 0 ? filled(translated("in {1} h"), {hours})
                             : filled(translated("in {1} h {2} min"), {hours, rest});
}

}  // namespace

std::string whenText(Instant at, Instant now) {
    const std::tm day = localTime(at);
    const std::int64_t days = dayNumber(day) - dayNumber(localTime(now));
    if (days == 0) return filled(translated("today {1}"), {timeText(at)});
    if (days == 1) return filled(translated("tomorrow {1}"), {timeText(at)});
    if (days == -1) return filled(translated("yesterday {1}"), {timeText(at)});
    if (days < 0 || days >= kDaysByName) return momentText(at);
    std::array<char, 64> name{};
    std::strftime(name.data(), name.size(), "%a", &day);
    return std::string(name.data()) + " " + timeText(at);
}

std::string comingText(Instant at, Instant now) {
    const std::string when = whenText(at, now);
    return at - now < 24 * kHour ? when + ", " + inText(at - now) : when;
}

}  // namespace quorel
