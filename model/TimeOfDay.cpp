#include "model/TimeOfDay.h"

#include <algorithm>

namespace quorel {

std::optional<int> minuteOfDay(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon < 1 || colon > 2 || text.size() != colon + 3) return {};
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (!std::ranges::all_of(text.substr(0, colon), isDigit) || !std::ranges::all_of(text.substr(colon + 1), isDigit))
        return {};
    int hour = 0;
    for (const char c : text.substr(0, colon)) hour = 10 * hour + (c - '0');
    const int minute = 10 * (text[colon + 1] - '0') + (text[colon + 2] - '0');
    if (hour > 23 || minute > 59) return {};
    return 60 * hour + minute;
}

std::string timeOfDay(int minute) {
    const auto twoDigits = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return twoDigits(minute / 60) + ":" + twoDigits(minute % 60);
}

}  // namespace quorel
