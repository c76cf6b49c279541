#pragma once

#include <string>

#include "ctl/Forecast.h"
#include "model/Dictionary.h"
#include "planning/ActionWords.h"

namespace quorel {

/// The version of what "--json" answers: what a program reads of it keeps its name and its meaning as long as this is
/// the same; more may come.
inline constexpr int kJsonFormat = 1;

/// On one line, with "format" in front. Keys are spelt alike, "WakeAlarm" being "wakeAlarm". A time is ISO 8601 in the
/// system's zone, with seconds since 1970 beside it under the same name and "Seconds".
std::string jsonOutput(const Dictionary& answer);

/// A Schedule of the plan, at a place from 0.
Value scheduleValue(const Value& schedule, std::size_t index, const Forecast& forecast, const ActionWords& actions,
                    Instant now);

}  // namespace quorel
