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
        std::function<void(const TrayContent::Choice& choice)> say;  ///< to an occurrence or a pause
        std::function<void()> checkUpdates;
        std::function<bool()> hasSettings;  ///< whether there are any to be opened
        std::function<void()> openSettings;
    };
    /// Hidden at first, and without a daemon.
    Tray(EventLoop& loop, Choices choices);

    void show(bool on);
    /// A panel that shows the menu keeps it where nothing has changed.
    void update(const TrayTold& told);
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
