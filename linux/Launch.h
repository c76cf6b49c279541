#pragma once

#include <string>
#include <vector>

namespace quorel {

/// Starts a program of the search path with its arguments, as the user would, and leaves it to itself. False when there
/// is none of that name. Any thread.
bool startProgram(std::vector<std::string> command);

}  // namespace quorel
