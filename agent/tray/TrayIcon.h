#pragma once

#include <cstdint>
#include <vector>

namespace quorel {

/// A picture as panels take it: rows from the top, each dot alpha, red, green, blue.
struct TrayIcon {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> dots;
};

/// The product's icon.
TrayIcon trayIcon();

}  // namespace quorel
