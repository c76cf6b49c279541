#include "planning/TimeWords.h"

#include <array>
#include <bit>

namespace quorel {

namespace {

constexpr std::array<std::string_view, 7> kDays = {"monday", "tuesday",  "wednesday", "thursday",
                                                   "friday", "saturday", "sunday"};
constexpr std::size_t kShort = 3;
constexpr struct {
    std::string_view name;
    DaySet days;
} kSets[] = {{"daily", kAllDays}, {"never", 0}, {"weekdays", 0x1F}, {"weekend", 0x60}, {"weekends", 0x60}};

std::string lowered(std::string_view word) {
    std::string result(word);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

/// One or two digits at the front, which are taken away.
std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    std::size_t length = 0;
    for (; length < 2 && length < text.size() && text[length] >= '0' && text[length] <= '9'; ++length)
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

}  // namespace

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
    constexpr int kMost = 1'000'000;
    const std::string word = lowered(typed);
    int length = 0;
    for (std::string_view rest = word; !rest.empty();) {
        const auto number = takeNumber(rest);
        const std::string_view unit = rest.substr(0, rest.find_first_of("0123456789"));
        rest.remove_prefix(unit.size());
        const bool isHours = unit == "h", isMinutes = unit == "m" || unit == "min";
        if (!number || *number < 1 || *number > 1000 || (!isHours && !isMinutes) || length > kMost) return {};
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

std::string dayWord(DaySet days) {
    if (days == kAllDays) return "daily";
    if (days == 0) return "never";
    std::string word;
    for (std::size_t day = 0; day < kDays.size();) {
        const auto length = static_cast<std::size_t>(std::countr_one(days >> day));
        const std::size_t step = length > 2 ? length : 1;
        if (length > 0) word.append(word.empty() ? "" : ",").append(kDays[day].substr(0, kShort));
        if (length > 2) word.append("-").append(kDays[day + length - 1].substr(0, kShort));
        day += step;
    }
    return word;
}

}  // namespace quorel
