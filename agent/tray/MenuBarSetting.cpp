#include "agent/tray/MenuBarSetting.h"

#include <sys/inotify.h>

#include <cstdint>
#include <utility>

#include "model/Preferences.h"

namespace quorel {

namespace {

/// What comes into a folder or goes out of it, is written there, or becomes of the folder itself.
constexpr std::uint32_t kOfItself = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED;
constexpr std::uint32_t kEvents = IN_CREATE | IN_CLOSE_WRITE | IN_MOVE | IN_DELETE | kOfItself | IN_ONLYDIR;

std::filesystem::path deepestFolder(std::filesystem::path folder) {
    std::error_code error;
    while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
    return folder;
}

}  // namespace

MenuBarSetting::MenuBarSetting(EventLoop& loop, const std::string& root, std::function<void(bool)> changed)
    : _loop(loop), _file(root + std::string(preferences::kFile)), _files(root), _changed(std::move(changed)) {
    watch();
    _on = readsOn();
    _changed(_on);
}

void MenuBarSetting::look() {
    watch();
    const bool on = readsOn();
    if (on != std::exchange(_on, on)) _changed(on);
}

bool MenuBarSetting::readsOn() const {
    const Value preferences = _files.dictionaryWithContentsOfFile(preferences::kFile);
    return !preferences.isDictionary() || preferences[preferences::kShowInMenuBar].intValue() == 1;
}

void MenuBarSetting::watch() {
    const auto called = [](sd_event_source*, const inotify_event* event, void* self) {
        static_cast<MenuBarSetting*>(self)->take(*event);
        return 0;
    };
    // Asked again after each step: a folder may have come before its parent was watched.
    for (auto folder = deepestFolder(_file.parent_path()); folder != _watched;
         folder = deepestFolder(_file.parent_path())) {
        sd_event_source* source = nullptr;
        _source.reset();
        _watched.clear();
        if (sd_event_add_inotify(_loop.get(), &source, folder.c_str(), kEvents, called, this) < 0) return;
        _source.reset(source);
        _watched = folder;
    }
}

void MenuBarSetting::take(const inotify_event& event) {
    const bool another = event.len > 0 && _watched == _file.parent_path() && _file.filename() != event.name;
    if (another) return;
    if ((event.mask & kOfItself) != 0) _watched.clear();  // what bears its name now is another folder
    look();
}

}  // namespace quorel
