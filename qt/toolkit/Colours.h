#pragma once

#include <QPalette>

namespace quorel::qt {

/// A colour for what is wrong that can be read on the theme's ground.
inline QColor faultColour(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(255, 138, 128) : QColor(176, 32, 22);
}

/// What stands in the second place: legible, and less than the text itself. `share`: how much of the text is left.
inline QColor faded(const QColor& text, const QColor& ground, double share = 0.62) {
    const auto mix = [share](int a, int b) { return static_cast<int>(a * share + b * (1 - share)); };
    return {mix(text.red(), ground.red()), mix(text.green(), ground.green()), mix(text.blue(), ground.blue())};
}

}  // namespace quorel::qt
