#include "linux/SettingsEntry.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "kit/MOLLog.h"
#include "linux/Launch.h"

namespace quorel {

std::optional<SettingsEntry> settingsEntry() {
    const char* given = std::getenv("XDG_DATA_DIRS");
    for (const char* name : {"com.quorel.Settings", "quorel"}) {
        std::istringstream folders(given && *given ? given : "/usr/local/share:/usr/share");
        for (std::string folder; std::getline(folders, folder, ':');) {
            std::ifstream entry(folder + "/applications/" + name + ".desktop");
            for (std::string line; std::getline(entry, line);)
                if (line.starts_with("Exec=")) return SettingsEntry{name, line.substr(5)};
        }
    }
    return {};
}

bool openSettings() {
    const auto entry = settingsEntry();
    const bool started = entry && startProgram({"sh", "-c", "exec " + entry->command});
    if (!started) MOLLog("The settings could not be opened.");
    return started;
}

}  // namespace quorel
