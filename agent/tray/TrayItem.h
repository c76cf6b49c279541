#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "agent/tray/TrayIcon.h"
#include "agent/tray/TrayMenu.h"
#include "linux/Bus.h"

namespace quorel {

/// An item of the desktop's panel (StatusNotifierItem), there for as long as this object. Panels that come or come back
/// later take it too; where there is none, nothing happens. It has a connection of its own, since panels watch that for
/// the item's end. The event loop's thread.
class TrayItem {
public:
    /// `activated` is called when somebody clicks at it. Throws std::system_error when there is no bus.
    TrayItem(sd_event* loop, std::function<void()> activated);
    TrayItem(const TrayItem&) = delete;

    /// What is read when the pointer rests on it. Plain text.
    void setTip(const std::string& title, const std::string& text);
    void setMenu(std::vector<MenuItem> items) { _menu.setItems(std::move(items)); }

private:
    friend struct TrayItemMethods;
    void registerAtPanel();

    BusConnection _bus;
    const std::function<void()> _activated;
    const TrayIcon _icon = trayIcon();
    std::string _title = "Quorel";
    std::string _tip;
    TrayMenu _menu;
    BusSlot _slot{nullptr, sd_bus_slot_unref};
};

}  // namespace quorel
