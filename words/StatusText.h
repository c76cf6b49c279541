#pragma once

#include <string>
#include <utility>
#include <vector>

#include "model/Value.h"

namespace quorel {

// Of the daemon's Status(), as lines for people.

/// What is told, with a colon behind it, and how it stands.
using StatusField = std::pair<std::string, std::string>;

/// What keeps the daemon from doing all that is planned, beside alarms and single Schedules. Empty where nothing does.
std::vector<StatusField> troubles(const Value& status);

/// An alarm that is wanted, and is not to be had.
bool isMissing(const Value& alarm);
/// When it comes, or why it does not.
std::string alarmText(const Value& alarm);

}  // namespace quorel
