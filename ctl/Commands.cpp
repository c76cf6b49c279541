#include "ctl/Commands.h"

#include <algorithm>

namespace quorel {

namespace {

/// Tells those who collect the texts; it is translated when it is shown.
constexpr const char* marked(const char* text) {
    return text;
}

constexpr Command kCommands[] = {
    {"status", "", marked("how things stand (as without a command)"), showStatus},
    {"list", "", marked("the plan: its schedules, and when each comes next"), listPlan},
    {"add", "ACTION TIME [DAYS] [OPTIONS]", marked("adds a schedule"), addSchedule, "", "w"},
    {"set", "N WORDS...", marked("changes what is named, as 18:30 or +sat"), setSchedule, "", "nw"},
    {"enable", "N...", marked("switches schedules on"), enableSchedules, "", "n"},
    {"disable", "N...", marked("switches schedules off"), disableSchedules, "", "n"},
    {"remove", "N...", marked("removes schedules"), removeSchedules, "", "n"},
    {"edit", "", marked("opens the plan in an editor, as text"), editPlan},
    {"export", "[FILE]", marked("writes the plan as text"), exportPlan, "", "f", false},
    {"import", "FILE", marked("puts that text in place of the plan; --dry-run only tells"), importPlan, "--dry-run",
     "f"},
    {"next", "[COUNT]", marked("the next occurrences"), showNext},
    {"skip", "[N|TOKEN]", marked("not this time; without a name the next one of all"), skip, "", "n"},
    {"unskip", "[N|TOKEN]", marked("takes a skip back"), unskip, "", "n"},
    {"postpone", "[N|TOKEN] [30m]", marked("15 minutes later, or as much as is said"), postpone, "", "n"},
    {"pause", "[until ...|FROM..TO]", marked("nothing is carried out, until tomorrow where nothing is said"), pausePlan,
     "", "p"},
    {"resume", "[N|all]", marked("ends a pause"), resumePlan, "", "r"},
    {"try", "N", marked("once and now, announced and held up as ever"), trySchedule, "--yes", "n"},
    {"log", "[COUNT]", marked("what became of the last occurrences; -f goes on telling"), showLog, "-f"},
    {"modules", "", marked("the actions that there are; --check FOLDER looks at one before it is installed"),
     showModules, "--check", "f"},
    {"settings", "", marked("opens the settings window, or else the pane, in this desktop"), showSettings, "", "",
     false},
};

}  // namespace

std::span<const Command> commands() {
    return kCommands;
}

const Command* commandNamed(const std::string& name) {
    const auto* found = std::ranges::find(kCommands, name, [](const Command& one) { return std::string(one.name); });
    return found == std::end(kCommands) ? nullptr : found;
}

}  // namespace quorel
