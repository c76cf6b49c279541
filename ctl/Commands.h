#pragma once

#include <span>
#include <string>
#include <vector>

namespace quorel {

/// What the program ends with; the manual page promises these.
enum class ExitStatus {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kNotRunning = 3,
    kNotFound = 4,  ///< no such Schedule or occurrence, or several
    kNotWell = 5
};

struct CommandLine {
    std::string command;
    std::vector<std::string> arguments;  ///< "--" and what follows among them
    bool json = false;
    bool isFlagged = false;  ///< the command's own flag was given
    std::string root;        ///< see Plan
};

struct Command {
    const char* name;
    const char* arguments;  ///< as help shows them
    const char* does;       ///< to be translated
    ExitStatus (*run)(const CommandLine& line);
    const char* flag = "";   ///< of its own, besides --json: "--dry-run"
    const char* takes = "";  ///< what its arguments are, for completion: 'n' Schedules, 'w' words of one, 'f' a file,
                             ///< 'p' when, 'r' a pause
    bool answersInJson = true;
};

/// In the order in which help shows them.
std::span<const Command> commands();
/// Null where there is none.
const Command* commandNamed(const std::string& name);

// The plan.
ExitStatus listPlan(const CommandLine& line);
ExitStatus addSchedule(const CommandLine& line);
ExitStatus setSchedule(const CommandLine& line);
ExitStatus enableSchedules(const CommandLine& line);
ExitStatus disableSchedules(const CommandLine& line);
ExitStatus removeSchedules(const CommandLine& line);
ExitStatus editPlan(const CommandLine& line);
ExitStatus exportPlan(const CommandLine& line);
ExitStatus importPlan(const CommandLine& line);

// What the daemon makes of it.
ExitStatus showStatus(const CommandLine& line);
ExitStatus showNext(const CommandLine& line);
ExitStatus showLog(const CommandLine& line);
ExitStatus showModules(const CommandLine& line);
ExitStatus skip(const CommandLine& line);
ExitStatus unskip(const CommandLine& line);
ExitStatus postpone(const CommandLine& line);
ExitStatus trySchedule(const CommandLine& line);
ExitStatus pausePlan(const CommandLine& line);
ExitStatus resumePlan(const CommandLine& line);

// What changes it with a mouse.
ExitStatus showSettings(const CommandLine& line);

/// For the completion of shells: what may stand in place of the last argument, a line each.
ExitStatus complete(const CommandLine& line);

}  // namespace quorel
