#pragma once

#include <functional>
#include <string>

#include "linux/FileWatch.h"
#include "linux/pane/RootedPropertyListFiles.h"

namespace quorel {

/// Whether "Show In Menu Bar" is on, as the pane reads it, followed as soon as the preferences are stored. The event
/// loop's thread.
class MenuBarSetting {
public:
    /// `root` stands in front of the file's path. `changed` gets the setting at once and whenever it has changed.
    MenuBarSetting(EventLoop& loop, const std::string& root, std::function<void(bool on)> changed);
    MenuBarSetting(const MenuBarSetting&) = delete;

    /// Reads the file now. Nothing need call it; now and then it makes up for what could not be watched.
    void readAgain();

private:
    bool readsOn() const;

    const RootedPropertyListFiles _files;
    const std::function<void(bool)> _changed;
    const FileWatch _watch;
    bool _on = false;
};

}  // namespace quorel
