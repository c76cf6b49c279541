#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorel {

// A time of day as parameters hold it: "17:00".

/// Minutes since midnight: of one or two digits, a colon and two digits, "0:00" to "23:59". Nothing of any other text.
std::optional<int> minuteOfDay(std::string_view text);

/// With two digits each. The minute is one of a day.
std::string timeOfDay(int minute);

}  // namespace quorel
