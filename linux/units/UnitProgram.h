#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorel {

/// What the sandbox of a program lets through; nothing where nothing is said.
struct UnitSandbox {
    bool mayUseNetwork = false;
    bool isRoot = false;              ///< otherwise a user that lives no longer than the program does
    std::vector<std::string> writes;  ///< folders, which must let the program's user as well
};

/// What a service manager is to run.
struct UnitProgram {
    std::string description;
    std::vector<std::string> command;  ///< the absolute path of a program, and its arguments
    std::string name;                  ///< in the journal
    std::string input;                 ///< its standard input, whole. Others can read it
    std::map<std::string, std::string> environment;
    std::chrono::seconds limit{600};  ///< ended after as long
    /// Without one it runs as its user does, and what it has started lives on when it ends.
    std::optional<UnitSandbox> sandbox;
};

/// Its properties as StartTransientUnit takes them, `a(sv)`.
void appendProperties(sd_bus_message* call, const UnitProgram& program);

}  // namespace quorel
