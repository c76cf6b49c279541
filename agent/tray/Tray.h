#pragma once

#include <functional>
#include <optional>
#include <string>

#include "agent/tray/TrayContent.h"
#include "agent/tray/TrayItem.h"
#include "linux/EventLoop.h"

namespace quorel {

/// What comes next, in the desktop's panel, and what can be said to it. The event loop's thread.
class Tray {
public:
    /// What people choose. None of it may hide the item at once.
    struct Choices {
        std::function<void(const std::string& token)> skip;
        std::function<void(const std::string& token)> postpone;
        std::function<void()> checkUpdates;
        std::function<bool()> hasSettings;  ///< whether there are any to be opened
        std::function<void()> openSettings;
    };
    /// Hidden at first, and without a daemon.
    Tray(EventLoop& loop, Choices choices);

    void show(bool on);
    /// Takes what the daemon's `Upcoming` told, and what this user may say to it. A panel that shows the menu keeps it
    /// where nothing has changed.
    void update(const Array& upcoming, bool maySkip, bool mayPostpone);
    void daemonHasGone();

private:
    void setContent(TrayContent content);
    void display();
    void choose(int number) const;

    EventLoop& _loop;
    const Choices _choices;
    TrayContent _content;
    std::optional<TrayItem> _item;
};

}  // namespace quorel
