#pragma once

#include <functional>
#include <string>

#include "daemon/UserLimit.h"
#include "daemon/acting/SchedulerHost.h"
#include "daemon/saving/PlanInPlace.h"
#include "linux/bus/Bus.h"
#include "linux/bus/Callers.h"

namespace quorel {

/// The scheduler on the bus: what comes next, what became of it, how things stand, for everybody to read; and two ways
/// to say no, for whom polkit lets. docs/protocol.md has the whole of it. The thread of the loop that serves the bus.
class SchedulerInterface {
public:
    /// What it is given must outlive it. Throws std::runtime_error.
    SchedulerInterface(Callers& callers, SchedulerHost& host, const PlanInPlace& plan);
    SchedulerInterface(const SchedulerInterface&) = delete;

    /// Tells whoever listens that it is worth asking again.
    void changed();

private:
    /// What is said of an occurrence, and what polkit calls it.
    struct Change {
        const char* action;
        std::string token;
        std::function<bool(const std::string& by)> make;
        std::string free = {};  ///< a user who need not ask
    };

    template <auto kAnswer>
    static int read(sd_bus_message* call, void* self, sd_bus_error* error);
    int upcoming(sd_bus_message* call) const;
    int outcomes(sd_bus_message* call) const;
    int status(sd_bus_message* call) const;
    int modules(sd_bus_message* call) const;
    static int skip(sd_bus_message* call, void* self, sd_bus_error* error);
    static int unskip(sd_bus_message* call, void* self, sd_bus_error* error);
    static int postpone(sd_bus_message* call, void* self, sd_bus_error* error);
    static int tryNow(sd_bus_message* call, void* self, sd_bus_error* error);

    int begin(sd_bus_message* call, Change change, sd_bus_error* error);
    void ask(HeldCall& call, const char* action, bool interaction, std::function<void()> permitted);
    void change(HeldCall& call, const Change& change);
    void tryNow(HeldCall& call, const std::string& schedule);

    Callers& _callers;
    SchedulerHost& _host;
    const PlanInPlace& _plan;
    UserLimit _limit{10};
    BusSlot _object;
};

}  // namespace quorel
