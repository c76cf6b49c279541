#pragma once

namespace quorel {

/// Points, in the coordinates of the frameworks: the origin is at the bottom left.
struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace quorel
