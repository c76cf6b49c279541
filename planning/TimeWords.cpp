#include "planning/TimeWords.h"

#include <algorithm>
#include <array>
#include <bit>
#include <initializer_list>

namespace quorel {

namespace {

constexpr std::array<std::string_view, 7> kDays = {"monday", "tuesday",  "wednesday", "thursday",
                                                   "friday", "saturday", "sunday"};
constexpr std::size_t kShort = 3;
constexpr struct {
    std::string_view name;
    DaySet days;
} kSets[] = {{"daily", kAllDays}, {"day", kAllDays}, {"never", 0},
             {"weekdays", 0x1F},  {"weekend", 0x60}, {"weekends", 0x60}};

std::string lowered(std::string_view word) {
    std::string result(word);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

/// Digits at the front, so many at most, which are taken away.
std::optional<int> takeNumber(std::string_view& text, std::size_t most = 2) {
    int number = 0;
    std::size_t length = 0;
    for (; length < most && length < text.size() && text[length] >= '0' && text[length] <= '9'; ++length)
        number = 10 * number + (text[length] - '0');
    text.remove_prefix(length);
    return length > 0 ? std::optional(number) : std::nullopt;
}

std::optional<std::size_t> dayOf(std::string_view word) {
    for (std::size_t i = 0; i < kDays.size(); ++i)
        if (word.size() >= kShort && kDays[i].starts_with(word)) return i;
    return {};
}

std::optional<DaySet> rangeOf(std::string_view word) {
    for (const auto& [name, days] : kSets)
        if (word == name) return days;
    const std::size_t dash = word.find('-');
    const auto first = dayOf(word.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : dayOf(word.substr(dash + 1));
    if (!first || !last) return {};
    DaySet days = 1U << *last;
    for (std::size_t day = *first; day != *last; day = (day + 1) % kDays.size()) days |= 1U << day;
    return days;
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::ranges::find(words, word) != words.end();
}

}  // namespace

bool isTime(std::string_view first, std::string_view second) {
    return isOneOf(lowered(second), {"am", "pm"}) && minuteOfWord(std::string(first) + std::string(second));
}

std::optional<int> minuteOfWord(std::string_view typed) {
    const std::string word = lowered(typed);
    if (word == "noon") return 12 * 60;
    if (word == "midnight") return 0;
    std::string_view rest = word;
    std::optional<int> hour = takeNumber(rest);
    int minute = 0;
    bool isTime = false;  // a number alone is none
    const bool hasMark = !rest.empty() && std::string_view(":.h").find(rest.front()) != std::string_view::npos;
    const bool mayEnd = hasMark && rest.front() == 'h';
    const bool hasDigits = !hasMark && rest.size() == 2 && rest[0] >= '0' && rest[0] <= '9';
    if (hasMark || hasDigits) {
        if (hasMark) rest.remove_prefix(1);
        const std::size_t length = rest.size();
        const auto number = takeNumber(rest);
        if (number ? length - rest.size() != 2 : !mayEnd) return {};
        minute = number.value_or(0);
        isTime = true;
    }
    if (const bool isLate = rest == "pm"; hour && (isLate || rest == "am")) {
        if (*hour < 1 || *hour > 12) return {};
        hour = *hour % 12 + (isLate ? 12 : 0);
        isTime = true;
        rest = {};
    }
    if (!hour || !isTime || !rest.empty() || *hour > 23 || minute > 59) return {};
    return 60 * *hour + minute;
}

std::optional<int> lengthOfWord(std::string_view typed) {
    constexpr std::size_t kMostDigits = 5;
    constexpr int kMost = 1'000'000;
    const std::string word = lowered(typed);
    int length = 0;
    for (std::string_view rest = word; !rest.empty();) {
        const auto number = takeNumber(rest, kMostDigits);
        const std::string_view unit = rest.substr(0, rest.find_first_of("0123456789"));
        rest.remove_prefix(unit.size());
        const bool isHours = isOneOf(unit, {"h", "hour", "hours"});
        const bool isMinutes = isOneOf(unit, {"m", "min", "minute", "minutes"});
        if (!number || *number < 1 || (!isHours && !isMinutes) || length > kMost) return {};
        length += *number * (isHours ? 60 : 1);
    }
    return length > 0 ? std::optional(length) : std::nullopt;
}

std::optional<DaySet> daysOfWord(std::string_view typed) {
    const std::string word = lowered(typed);
    DaySet days = 0;
    for (std::string_view rest = word;;) {
        const std::size_t comma = rest.find(',');
        const auto some = rangeOf(rest.substr(0, comma));
        if (!some) return {};
        days |= *some;
        if (comma == std::string_view::npos) return days;
        rest.remove_prefix(comma + 1);
    }
}

std::vector<std::pair<std::size_t, std::size_t>> runsOf(DaySet days) {
    std::vector<std::pair<std::size_t, std::size_t>> runs;
    for (std::size_t day = 0; day < kDays.size();) {
        const auto length = static_cast<std::size_t>(std::countr_one(days >> day));
        const std::size_t step = length > 2 ? length : 1;
        if (length > 0) runs.emplace_back(day, step);
        day += step;
    }
    return runs;
}

std::string dayWord(DaySet days) {
    if (days == kAllDays) return "daily";
    if (days == 0) return "never";
    std::string word;
    for (const auto& [first, length] : runsOf(days)) {
        word.append(word.empty() ? "" : ",").append(kDays[first].substr(0, kShort));
        if (length > 1) word.append("-").append(kDays[first + length - 1].substr(0, kShort));
    }
    return word;
}

}  // namespace quorel
