#include "agent/tray/Tray.h"

#include <system_error>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

Tray::Tray(EventLoop& loop, Choices choices) : _loop(loop), _choices(std::move(choices)) {}

void Tray::show(bool on) try {
    if (on == _item.has_value()) return;
    if (!on) return _item.reset();
    _item.emplace(_loop, _choices.openSettings, [this](int choice) { choose(choice); });
    display();
} catch (const std::system_error& error) {
    MOLLog("%s", error.what());
}

void Tray::update(const Array& upcoming, bool maySkip, bool mayPostpone) {
    setContent(trayContent(upcoming, maySkip, mayPostpone));
}

void Tray::daemonHasGone() {
    setContent(trayContentWithoutDaemon());
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

void Tray::choose(int choice) const {
    const std::string token = _content.token;  // which may change by what is called
    switch (choice) {
        case TrayContent::kPostpone:
            return _choices.postpone(token);
        case TrayContent::kSkip:
            return _choices.skip(token);
        case TrayContent::kCheckUpdates:
            return _choices.checkUpdates();
        case TrayContent::kOpenSettings:
            return _choices.openSettings();
        default:
            return;
    }
}

}  // namespace quorel
