#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "linux/EventLoop.h"
#include "linux/pane/RootedPropertyListFiles.h"

struct inotify_event;

namespace quorel {

/// Whether "Show In Menu Bar" is on, as the pane reads it, followed as soon as the preferences are stored: their folder
/// is watched, or as long as there is none, what there is of the way to it. The event loop's thread.
class MenuBarSetting {
public:
    /// `root` stands in front of the file's path. `changed` gets the setting at once and whenever it has changed.
    MenuBarSetting(EventLoop& loop, const std::string& root, std::function<void(bool on)> changed);
    MenuBarSetting(const MenuBarSetting&) = delete;

    /// Reads the file now. Nothing need call it; now and then it makes up for what could not be watched.
    void look();

private:
    void watch();
    void take(const inotify_event& event);
    bool readsOn() const;

    EventLoop& _loop;
    const std::filesystem::path _file;
    const RootedPropertyListFiles _files;
    const std::function<void(bool)> _changed;
    std::filesystem::path _watched;  // empty: no folder
    EventSource _source;
    bool _on = false;
};

}  // namespace quorel
