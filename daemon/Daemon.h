#pragma once

#include <string>

#include "daemon/acting/SchedulerHost.h"
#include "daemon/acting/SchedulerInterface.h"
#include "daemon/saving/Door.h"
#include "daemon/saving/PlanInPlace.h"
#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"
#include "linux/bus/Callers.h"
#include "linux/bus/EmptyBus.h"
#include "linux/bus/PublicConnection.h"

namespace quorel {

/// What the daemon is made of: one loop, a connection to the system bus for its own
/// questions and one on which it is called, and the parts that share them.
class Daemon {
public:
    /// What it does to the computer that it runs on.
    enum class Touches { kNothing, kAll };

    /// `root` stands before absolute paths of the product. `clocks` must outlive it. Throws std::exception when the bus
    /// or the name is not to be had. Call it before threads are started.
    Daemon(const std::string& root, const Clocks& clocks, Touches touches);

    /// Serves until told to end, by a signal or by the bus, which has gone then. The program's exit status.
    int run();

private:
    EventLoop _loop;
    const BusConnection _bus;
    PublicConnection _public;
    Callers _callers{_public, _bus.get()};
    const EmptyBus _emptyBus;
    SchedulerHost _host;
    PlanInPlace _plan;
    SchedulerInterface _schedulerInterface;
    Door _door;
    EventSource _reloading;
};

}  // namespace quorel
