#include "agent/Settings.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "kit/MOLLog.h"
#include "linux/Launch.h"

namespace quorel {

namespace {

/// As the entry has it, which is how a shell would have it, too.
std::string paneCommand() {
    const char* given = std::getenv("XDG_DATA_DIRS");
    std::istringstream folders(given && *given ? given : "/usr/local/share:/usr/share");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::ifstream entry(folder + "/applications/quorel.desktop");
        for (std::string line; std::getline(entry, line);)
            if (line.starts_with("Exec=")) return line.substr(5);
    }
    return "SystemPreferences";
}

}  // namespace

void openSettings() {
    const std::string window = "command -v quorel-settings > /dev/null && exec quorel-settings";
    if (!startProgram({"sh", "-c", window + "; exec " + paneCommand()})) MOLLog("The settings could not be opened.");
}

}  // namespace quorel
