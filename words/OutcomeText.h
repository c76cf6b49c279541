#pragma once

#include <string>

#include "model/Value.h"
#include "scheduler/Instant.h"

namespace quorel {

// What the scheduler tells, as sentences for people: one line each, in the language that Language.h speaks. Values may
// come from anywhere: whatever stands in them is shown as plain text, and what is not understood as it stands.

/// "Sleep", "Wake Up", or of a module's action type the last part.
std::string actionName(const std::string& actionType, bool restarts = false);
/// What the action of an occurrence, an outcome or a module is called, which a module's "Names" tell by language.
std::string actionName(const Value& told);
/// An Outcome's value: "not put to sleep: rsync: copying (waited 30 minutes)".
std::string outcomeText(const Value& outcome);
/// The same with the action and its time in front, where it has them.
std::string outcomeLine(const Value& outcome);
/// What there is to say of an occurrence to come: "held up: rsync: copying". Empty for one that is only planned.
std::string stepText(const Value& upcoming);
/// When a pause is: "until Tue 2027-03-02 05:00, by ann".
std::string pauseText(const Value& pause, Instant now);
/// Why the daemon did not skip or postpone: an error's name on the bus, and what it says.
std::string refusalText(const std::string& error, const std::string& text);
/// Why a Schedule never runs, by a `wire::schedule_fault`: "there is no such action".
std::string faultReasonText(const std::string& reason);
/// With which Schedule it is: "Schedule 3 (Sleep) does not run: …".
std::string faultText(const Value& fault);

}  // namespace quorel
