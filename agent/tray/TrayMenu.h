#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "linux/bus/Bus.h"

namespace quorel {

/// One line of a menu. One without a text is a separator.
struct MenuItem {
    std::string text;  ///< plain; nothing in it is interpreted
    int choice = 0;    ///< what choosing it is handed over as; 0: a line to read
    friend bool operator==(const MenuItem&, const MenuItem&) = default;
};

/// A flat menu that a desktop's panel shows for this program (com.canonical.dbusmenu). The event loop's thread.
class TrayMenu {
public:
    static constexpr const char* kPath = "/MenuBar";

    /// Throws std::system_error when the bus does not take it.
    TrayMenu(sd_bus* bus, std::function<void(int choice)> chosen);
    TrayMenu(const TrayMenu&) = delete;

    /// What is chosen in an earlier menu, which a panel may still show, does nothing.
    void setItems(std::vector<MenuItem> items);

private:
    friend struct TrayMenuMethods;
    const MenuItem* itemOf(std::int32_t id) const;
    void choose(std::int32_t id) const;

    sd_bus* const _bus;
    const std::function<void(int)> _chosen;
    BusSlot _slot;
    std::vector<MenuItem> _items;
    std::int32_t _firstId = 1;  // the menu itself is 0
    std::uint32_t _revision = 1;
};

}  // namespace quorel
