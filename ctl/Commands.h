#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quorel {

/// What the program ends with.
enum class ExitStatus { kDone = 0, kFailed = 1, kUsage = 2, kNotRunning = 3, kNoSuchOccurrence = 4, kNotWell = 5 };

struct CommandLine {
    std::string command;
    std::vector<std::string> arguments;
    bool json = false;
    std::optional<std::string> check;  ///< the folder of a module
};

ExitStatus runCommand(const CommandLine& line);
void complain(const std::string& text);

}  // namespace quorel
