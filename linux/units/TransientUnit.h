#pragma once

#include <functional>
#include <map>
#include <string>

#include "linux/bus/Bus.h"
#include "linux/units/UnitProgram.h"
#include "scheduler/Outcome.h"

namespace quorel {

/// Runs programs as transient services of the service manager that is on the bus: the system's or the user's. They
/// outlive this program, and `find` goes on waiting for one by its name. One thread; the bus must outlive it.
class TransientUnits {
public:
    /// `reason` says why it failed or was not started: a code of Outcome.h, or a text of the system's.
    using Ended = std::function<void(ActionEnd end, int status, const std::string& reason)>;

    explicit TransientUnits(sd_bus* bus);

    /// `name` ends in ".service"; one of that name that is there already is waited for instead. `ended` is called once,
    /// later.
    void start(const std::string& name, const UnitProgram& program, Ended ended);
    /// `ended` is told kUnknown where there is none.
    void find(const std::string& name, Ended ended);

private:
    struct Run {
        Ended ended;
        std::string path = {};
        BusSlot call = {};
        BusSlot signals = {};
    };
    Run& begin(const std::string& name, Ended ended);
    void hold(const std::string& name);
    void fetchState(const std::string& name);
    void read(const std::string& name, sd_bus_message* reply);
    void end(const std::string& name, ActionEnd end, int status, const std::string& reason);

    sd_bus* _bus;
    BusSlot _subscription;
    BusSlot _restarts;
    std::map<std::string, Run> _runs;
};

}  // namespace quorel
