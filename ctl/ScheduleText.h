#pragma once

#include <string>

#include "model/Value.h"
#include "planning/ActionWords.h"
#include "planning/TextFault.h"
#include "planning/TimeWords.h"
#include "scheduler/Instant.h"

namespace quorel {

// What is told of the plan, in the user's language.

/// What the action is called: "Sleep".
std::string nameOfAction(const Value& schedule, const ActionWords& actions);
/// What it does where its options say so: "after 20 min idle". Empty otherwise.
std::string detailOf(const Value& schedule, const ActionWords& actions);
/// "Mon–Fri", "daily".
std::string daysText(DaySet days);
std::string timeOf(const Value& schedule);
/// "Sleep, Mon–Fri 23:15, after 20 min idle".
std::string summaryOf(const Value& schedule, const ActionWords& actions);

/// "today 23:15", "tomorrow 07:00", and otherwise as momentText.
std::string whenText(Instant at, Instant now);
/// The same with ", in 5 h 31 min" where that is within a day.
std::string comingText(Instant at, Instant now);

/// What is wrong, without its place.
std::string sentenceOf(const TextFault& fault);

}  // namespace quorel
