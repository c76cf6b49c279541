#include <cstdlib>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "linux/SettingsEntry.h"
#include "words/Language.h"

namespace quorel {

ExitStatus showSettings(const CommandLine& line) {
    if (!line.arguments.empty()) return misused(translated("Too many arguments."));
    const bool isInstalled = settingsEntry().has_value();
    const bool hasDesktop = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    if (isInstalled && hasDesktop && openSettings()) return ExitStatus::kDone;
    if (!isInstalled)
        complain(translated("Neither the settings window nor the pane is installed."));
    else if (!hasDesktop)
        complain(translated("There is no desktop here."));
    return ExitStatus::kFailed;
}

}  // namespace quorel
