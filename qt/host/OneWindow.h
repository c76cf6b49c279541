#pragma once

#include <functional>

#include "linux/bus/Bus.h"

namespace quorel::qt {

/// One window to a session: a second start has the first one come forward, by the interface that desktops activate
/// applications with. Without a session bus each start is the first. The thread of the loop.
class OneWindow {
public:
    OneWindow(EventLoop& loop, std::function<void()> activated);

    sd_bus* bus() const { return _bus.get(); }  ///< the session's; null where there is none
    /// False: another program has the name, and was asked to come forward.
    bool isFirst() const { return _isFirst; }

private:
    static int activate(sd_bus_message* call, void* self, sd_bus_error* error);
    void askFirst() const;

    const std::function<void()> _activated;
    BusConnection _bus;
    BusSlot _object;
    bool _isFirst = true;
};

}  // namespace quorel::qt
