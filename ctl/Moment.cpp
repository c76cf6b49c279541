#include "ctl/Moment.h"

#include <bit>
#include <chrono>
#include <cstdio>
#include <sstream>

#include "planning/TimeWords.h"

namespace quorel {

namespace {

/// Of "2026-12-24".
std::optional<LocalDate> dateIn(const std::string& word) {
    int year = 0, end = 0;
    unsigned month = 0, day = 0;
    if (std::sscanf(word.c_str(), "%4d-%2u-%2u%n", &year, &month, &day, &end) != 3) return {};
    const auto date = std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day);
    if (static_cast<std::size_t>(end) != word.size() || !date.ok()) return {};
    return LocalDate(date);
}

/// A day that is named, from today on.
std::optional<LocalDate> dayNamed(const std::string& word, LocalDate today) {
    if (word == "today") return today;
    if (word == "tomorrow") return today + std::chrono::days(1);
    const auto days = daysOfWord(word);
    if (!days || !std::has_single_bit(*days)) return dateIn(word);
    const auto wanted = static_cast<unsigned>(std::countr_zero(*days));
    const unsigned weekday = std::chrono::weekday(today).iso_encoding() - 1;
    return today + std::chrono::days((wanted + 7 - weekday) % 7);
}

}  // namespace

std::optional<Instant> momentOf(const std::string& words, Instant after, int usual, const Calendar& calendar) {
    const LocalDate today = calendar.dateOf(after);
    std::optional<LocalDate> date;
    std::optional<int> minute;
    bool isNamed = false;
    std::istringstream all(words);
    for (std::string word; all >> word;) {
        const auto time = minuteOfWord(word);
        const auto day = time ? std::nullopt : dayNamed(word, today);
        if ((!time && !day) || (time && minute) || (day && date)) return {};
        if (time) minute = time;
        if (day) date = day, isNamed = daysOfWord(word).has_value();
    }
    if (!date && !minute) return {};
    const int at = minute.value_or(usual);
    const auto on = [&](LocalDate day) { return calendar.instantOf(day, at / 60, at % 60); };
    const auto first = on(date.value_or(today));
    // A day without a time may have begun.
    const bool isPast = first && *first <= after && (minute || usual != 0);
    if (isPast && !date) return on(today + std::chrono::days(1));
    return isPast && isNamed ? on(*date + std::chrono::days(7)) : first;
}

}  // namespace quorel
