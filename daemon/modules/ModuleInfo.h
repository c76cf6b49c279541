#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/Dictionary.h"
#include "scheduler/Instant.h"

namespace quorel {

/// A module as its information dictionary describes it to programs that load no class.
struct ModuleInfo {
    std::string bundle;  ///< its folder's name
    std::string action;  ///< empty where it says none
    Dictionary names;    ///< of the action, by language; plain text
    /// Why it does nothing: one of those below, or empty. What the daemon does itself has neither fault nor program.
    std::string_view fault;
    std::string program;  ///< the file in Resources
    bool isSystem = false;
    Seconds limit = 0;
    Seconds makeUp = 0;
    bool mayUseNetwork = false;
    bool isRoot = false;
    std::vector<std::string> writes;  ///< absolute paths of folders

    /// Of any value; whether there is such a program is another question.
    static ModuleInfo from(const std::string& bundle, const Value& dictionary);
    /// As Modules() tells it.
    Value value() const;
};

namespace module_fault {

inline constexpr std::string_view kUntrusted = "untrusted";     ///< others could have changed it, or it is a link
inline constexpr std::string_view kUnreadable = "unreadable";   ///< no information dictionary
inline constexpr std::string_view kNoWords = "no-words";        ///< it does not say what action it is
inline constexpr std::string_view kNoProgram = "no-program";    ///< it has nothing to run
inline constexpr std::string_view kMalformed = "malformed";     ///< what it says about its program makes no sense
inline constexpr std::string_view kBadProgram = "bad-program";  ///< the program is missing, no program or untrusted
inline constexpr std::string_view kTaken = "taken";             ///< a module before it is this action already

}  // namespace module_fault

}  // namespace quorel
