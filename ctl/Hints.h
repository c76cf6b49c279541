#pragma once

#include "linux/bus/Bus.h"

namespace quorel {

/// Waits until the daemon has something new to tell, or another daemon has come.
class Hints {
public:
    Hints();
    Hints(const Hints&) = delete;

    /// False where there is no bus that could tell, or not any more.
    bool wait();

private:
    bool _heard = false;
    const BusConnection _bus;
    BusSlot _owner, _changed;
};

}  // namespace quorel
