#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ctl/Commands.h"
#include "ctl/Plan.h"

namespace quorel {

/// A whole number from 1 to `most`.
std::optional<unsigned> numberIn(const std::string& text, std::size_t most);

/// The arguments with "shut" "down" and "7" "pm" as the one word that the plan has for it, as far as "--".
std::vector<std::string> withNamesJoined(std::span<const std::string> arguments, const ActionWords& actions);

/// Which Schedules are meant, from 0: by their numbers in the list, or one by time, action and perhaps days, in any
/// order. Otherwise `status` is another than kDone, and why has been said.
std::vector<std::size_t> chosenSchedules(const Plan& plan, const std::vector<std::string>& arguments,
                                         ExitStatus& status);

}  // namespace quorel
