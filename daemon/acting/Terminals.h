#pragma once

#include <map>
#include <string>
#include <utility>

#include "linux/bus/Bus.h"
#include "linux/login/LoginSessions.h"
#include "linux/time/Clocks.h"
#include "linux/units/TransientUnit.h"
#include "scheduler/Scheduler.h"

namespace quorel {

/// Tells whoever is logged in on a text console or by ssh that the computer is about to be shut down. Agents speak to
/// graphical sessions alone, and what is written to all terminals would be seen within those a second time.
///
/// A terminal that somebody has stopped holds up who writes to it: a transient unit for each does so, and not this
/// program, to which its sandbox shows no devices anyway. One thread; `clocks` and the bus must outlive it.
class Terminals {
public:
    Terminals(sd_bus* bus, const Clocks& clocks) : _bus(bus), _clocks(clocks), _units(bus) {}

    /// A shut-down that is announced; however often it is told of one, people are told once for each time that it has.
    void announce(const Upcoming& shutDown);

private:
    void readSessions(sd_bus_message* reply);
    void write(const std::string& terminal);

    sd_bus* const _bus;
    const Clocks& _clocks;
    TransientUnits _units;
    std::pair<std::string, Instant> _announced;  // the last one's token and time
    std::string _text;
    BusSlot _list;
    std::map<std::string, BusSlot> _reads;  // under way, by the session's path
};

}  // namespace quorel
