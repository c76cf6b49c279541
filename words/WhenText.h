#pragma once

#include <string>

#include "scheduler/Instant.h"

namespace quorel {

// An instant, as somebody says it who stands at `now`.

/// "today 23:15", "yesterday 18:00", "tomorrow 07:00", "Mon 07:00" within the next week, and otherwise as momentText.
std::string whenText(Instant at, Instant now);
/// The same with ", in 5 h 31 min" where that is within a day.
std::string comingText(Instant at, Instant now);

}  // namespace quorel
