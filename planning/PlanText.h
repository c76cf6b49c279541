#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/Value.h"
#include "planning/ActionWords.h"
#include "planning/TextFault.h"

namespace quorel {

// A plan as text, for people and for diffs: a line a Schedule, in list order, and one for the product's options, which
// begins with "options". Empty lines and what stands behind "#" say nothing.

/// Of preferences that pass faultInPreferences.
std::string planText(const Value& preferences, const ActionWords& actions);

struct PlanReading {
    Value preferences;               ///< absent where there are faults
    std::vector<TextFault> faults;   ///< all of them, in order
    std::vector<TextFault> remarks;  ///< what can be stored, as others have done, and can only fail; in order
};
/// `preferences` with the Schedules that the text says, and the options that it names. A Schedule that reads the same
/// as one of `preferences` is that one, kinds of values included: what planText has written changes nothing.
PlanReading readPlanText(std::string_view text, const Value& preferences, const ActionWords& actions);

/// What becomes of a plan, in lines of its text.
struct PlanChanges {
    std::vector<std::string> removed, added;
    bool isReordered = false;  ///< nothing else, or besides
    bool isNone() const { return removed.empty() && added.empty() && !isReordered; }
};
PlanChanges changesBetween(const Value& before, const Value& after, const ActionWords& actions);

}  // namespace quorel
