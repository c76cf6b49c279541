#pragma once

#include <string>
#include <vector>

#include "model/Value.h"

namespace quorel {

/// Rows of a table about a module as the daemon tells of it: what its action is called, its type and how it is run;
/// below, what it declares.
std::vector<std::vector<std::string>> moduleRows(const Value& module);

}  // namespace quorel
