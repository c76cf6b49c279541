#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "linux/Bus.h"

namespace quorel {

/// One line of a menu. One without a text is a separator.
struct MenuItem {
    std::string text;              ///< plain; nothing in it is interpreted
    std::function<void()> chosen;  ///< none: a line to read
};

/// A flat menu that a desktop's panel shows for this program (com.canonical.dbusmenu). The event loop's thread.
class TrayMenu {
public:
    static constexpr const char* kPath = "/MenuBar";

    /// Throws std::system_error when the bus does not take it.
    explicit TrayMenu(sd_bus* bus);
    TrayMenu(const TrayMenu&) = delete;

    /// What is chosen in an earlier menu, which a panel may still show, does nothing.
    void setItems(std::vector<MenuItem> items);

private:
    friend struct TrayMenuMethods;
    const MenuItem* itemOf(std::int32_t id) const;
    void choose(std::int32_t id) const;

    sd_bus* const _bus;
    BusSlot _slot{nullptr, sd_bus_slot_unref};
    std::vector<MenuItem> _items;
    std::int32_t _firstId = 1;  // the menu itself is 0
    std::uint32_t _revision = 1;
};

}  // namespace quorel
