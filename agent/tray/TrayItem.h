#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "agent/tray/TrayMenu.h"
#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"

namespace quorel {

/// An item of the desktop's panel (StatusNotifierItem), there for as long as this object. Panels that come or come back
/// later take it too; where there is none, nothing happens. It has a connection of its own, by whose end panels notice
/// that it has gone. The event loop's thread; not to be destroyed from within what it calls.
class TrayItem {
public:
    /// `activated` is called for a click on the item, `chosen` for a line of its menu. Throws std::system_error.
    TrayItem(EventLoop& loop, std::function<void()> activated, std::function<void(int choice)> chosen);
    TrayItem(const TrayItem&) = delete;

    /// What is read when the pointer rests on it.
    void setTitle(const std::string& title);
    void setMenu(std::vector<MenuItem> items) { _menu.setItems(std::move(items)); }

private:
    friend struct TrayItemMethods;
    void panelCame();
    void registerAtPanel();

    const BusConnection _bus;
    const std::function<void()> _activated;
    std::string _title = "Quorel";
    TrayMenu _menu;
    LoopTimer _again;
    int _attempts = 0;  // still to be made
    BusSlot _object;
    BusSlot _watch;
    BusSlot _registration;
};

}  // namespace quorel
