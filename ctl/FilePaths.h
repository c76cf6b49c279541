#pragma once

#include <string>

#include "model/Value.h"
#include "planning/ActionWords.h"

namespace quorel {

/// Makes paths absolute that a Schedule's options name, as seen from here: what is stored is run from elsewhere. A
/// program's name alone is looked up in PATH. What `stored` has already stays as it is. Answers with the reason where
/// there is no such program.
std::string makePathsAbsolute(Value& schedule, const Value& stored, const ActionWords& actions);

}  // namespace quorel
