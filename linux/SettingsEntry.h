#pragma once

#include <optional>
#include <string>

namespace quorel {

/// What changes the plan here, as the desktop's menu has it: the settings window where it is installed, or else the
/// pane.
struct SettingsEntry {
    std::string name;     ///< of the entry's file, without ".desktop"
    std::string command;  ///< as the entry has it, which is how a shell would have it, too
};

/// Read anew each time, since packages come and go. Nothing where neither is installed. Any thread.
std::optional<SettingsEntry> settingsEntry();

/// Starts it. The log tells where nothing can be started. Any thread.
bool openSettings();

}  // namespace quorel
