#pragma once

#include <string>

#include "model/Value.h"
#include "planning/ActionWords.h"
#include "planning/TextFault.h"
#include "planning/TimeWords.h"

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

/// What is wrong, without its place.
std::string sentenceOf(const TextFault& fault);

}  // namespace quorel
