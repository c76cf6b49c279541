#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorel {

// Times of day and days of the week as people type them, in English whatever the language.

/// Minutes since midnight: "23:15", "7.30", "7h30", "7h", "0730", "7pm", "7:30 pm" in one word, "noon", "midnight".
std::optional<int> minuteOfWord(std::string_view word);

/// Minutes of a length: "30m", "90min", "1h", "1h30m".
std::optional<int> lengthOfWord(std::string_view word);

/// Days of the week: bit 0 is Monday.
using DaySet = unsigned;
inline constexpr DaySet kAllDays = 0x7F;
/// "mon", "monday", "mon-fri" (also around the end of a week, "sat-mon"), "sat,sun", "weekdays", "weekend", "daily",
/// "never". In small or large letters.
std::optional<DaySet> daysOfWord(std::string_view word);
/// The shortest such word.
std::string dayWord(DaySet days);

}  // namespace quorel
