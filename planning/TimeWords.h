#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorel {

// Times of day and days of the week as people type them, in English whatever the language.

/// Minutes since midnight: "23:15", "7.30", "7h30", "7h", "0730", "7pm", "7:30 pm" in one word, "noon", "midnight".
std::optional<int> minuteOfWord(std::string_view word);

/// Whether two words are a time: "7" "pm".
bool isTime(std::string_view first, std::string_view second);

/// Minutes of a length: "30m", "90min", "1h", "1h30m", "2hours".
std::optional<int> lengthOfWord(std::string_view word);

/// Days of the week: bit 0 is Monday.
using DaySet = unsigned;
inline constexpr DaySet kAllDays = 0x7F;
/// "mon", "monday", "mon-fri" (also around the end of a week, "sat-mon"), "sat,sun", "weekdays", "weekend", "daily",
/// "day", "never". In small or large letters.
std::optional<DaySet> daysOfWord(std::string_view word);
/// Its days in order: the first of each run and how many it has; of two in a row each is one of its own.
std::vector<std::pair<std::size_t, std::size_t>> runsOf(DaySet days);
/// The shortest such word.
std::string dayWord(DaySet days);

}  // namespace quorel
