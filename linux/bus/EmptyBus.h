#pragma once

#include "linux/bus/Bus.h"

namespace quorel {

/// A bus on which nobody is: whatever is asked of anybody there is refused at once. For a program that is to touch
/// nothing of the computer.
class EmptyBus {
public:
    /// Throws std::system_error.
    explicit EmptyBus(EventLoop& loop);

    sd_bus* get() const { return _near.get(); }

private:
    BusConnection _far;  // sd-bus answers there by itself: it has no objects
    BusConnection _near;
};

}  // namespace quorel
