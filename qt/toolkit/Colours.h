#pragma once

#include <QPalette>

namespace quorel::qt {

/// A colour for what is wrong that can be read on the theme's ground.
inline QColor faultColour(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(255, 138, 128) : QColor(176, 32, 22);
}

}  // namespace quorel::qt
