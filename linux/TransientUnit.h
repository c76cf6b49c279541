#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "linux/Bus.h"
#include "scheduler/World.h"

namespace quorel {

/// What systemd is to run, and what it may.
struct UnitProgram {
    std::string description;
    std::string path;   ///< absolute
    std::string input;  ///< its standard input, whole
    std::map<std::string, std::string> environment;
    std::chrono::seconds limit{600};  ///< ended after as long
    bool mayUseNetwork = false;
    bool isRoot = false;  ///< otherwise a user that lives no longer than it does
    std::vector<std::string> writableFolders;
};

/// Runs programs as transient services of the system's service manager, in a fixed sandbox. They outlive this program:
/// `find` goes on waiting for one by its name, also when it has ended meanwhile. One thread.
class TransientUnits {
public:
    /// `reason` says why it failed or was not started.
    using Ended = std::function<void(ActionEnd end, int status, const std::string& reason)>;

    explicit TransientUnits(sd_bus* bus) : _bus(bus) {}

    /// `name` ends in ".service". `ended` is called once, later, for each.
    void start(const std::string& name, const UnitProgram& program, Ended ended);
    /// `ended` is told kUnknown where there is no such unit.
    void find(const std::string& name, Ended ended);

private:
    struct Run {
        Ended ended;
        std::string path = {};
        BusSlot call = {};
        BusSlot signals = {};
    };
    Run& begin(const std::string& name, Ended ended);
    void look(const std::string& name);
    void read(const std::string& name, sd_bus_message* reply);
    void end(const std::string& name, ActionEnd end, int status, const std::string& reason);

    sd_bus* _bus;
    BusSlot _subscription;
    std::map<std::string, Run> _runs;
};

}  // namespace quorel
