#include "agent/tray/MenuBarSetting.h"

#include <utility>

#include "model/Preferences.h"

namespace quorel {

MenuBarSetting::MenuBarSetting(EventLoop& loop, const std::string& root, std::function<void(bool)> changed)
    : _files(root),
      _changed(std::move(changed)),
      _watch(loop, root + std::string(preferences::kFile), [this] { readAgain(); }),
      _on(readsOn()) {
    _changed(_on);
}

void MenuBarSetting::readAgain() {
    const bool on = readsOn();
    if (on != std::exchange(_on, on)) _changed(on);
}

bool MenuBarSetting::readsOn() const {
    const Value preferences = _files.dictionaryWithContentsOfFile(preferences::kFile);
    return !preferences.isDictionary() || preferences[preferences::kShowInMenuBar].intValue() == 1;
}

}  // namespace quorel
