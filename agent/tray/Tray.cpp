#include "agent/tray/Tray.h"

#include <ctime>
#include <system_error>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

Tray::Tray(EventLoop& loop, Choices choices)
    : _loop(loop), _choices(std::move(choices)), _content(trayContentWithoutDaemon(_choices.hasSettings())) {}

void Tray::show(bool on) try {
    if (on == _item.has_value()) return;
    if (!on) return _item.reset();
    _item.emplace(_loop, _choices.hasSettings() ? _choices.openSettings : nullptr,
                  [this](int number) { choose(number); });
    display();
} catch (const std::system_error& error) {
    MOLLog("%s", error.what());
}

void Tray::update(const TrayTold& told) {
    setContent(trayContent(told, std::time(nullptr), _choices.hasSettings()));
}

void Tray::daemonHasGone() {
    setContent(trayContentWithoutDaemon(_choices.hasSettings()));
}

void Tray::setContent(TrayContent content) {
    if (content == _content) return;
    _content = std::move(content);
    if (_item) display();
}

void Tray::display() {
    _item->setTitle(_content.title);
    _item->setMenu(_content.menu);
}

void Tray::choose(int number) const {
    using Choice = TrayContent::Choice;
    const Choice choice = _content.choices.at(static_cast<std::size_t>(number) - 1);  // what is called may change it
    switch (choice.what) {
        case Choice::kCheckUpdates:
            return _choices.checkUpdates();
        case Choice::kOpenSettings:
            return _choices.openSettings();
        default:
            return _choices.say(choice);
    }
}

}  // namespace quorel
