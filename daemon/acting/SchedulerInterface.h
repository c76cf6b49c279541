#pragma once

#include <functional>
#include <string>

#include "daemon/UserLimit.h"
#include "daemon/acting/SchedulerHost.h"
#include "daemon/saving/PlanInPlace.h"
#include "linux/bus/Bus.h"
#include "linux/bus/Callers.h"

namespace quorel {

/// The scheduler on the bus: what comes next, what became of it, how things stand, for everybody to read; and what
/// people say to it, whom polkit lets. docs/protocol.md has the whole of it. The thread of the loop that serves the
/// bus.
class SchedulerInterface {
public:
    /// What it is given must outlive it. Throws std::runtime_error.
    SchedulerInterface(Callers& callers, SchedulerHost& host, const PlanInPlace& plan);
    SchedulerInterface(const SchedulerInterface&) = delete;

    /// Tells whoever listens that it is worth asking again.
    void changed();

private:
    /// What polkit is asked for, unless the caller is `free`, and what happens then.
    struct Request {
        const char* right;
        std::function<void(HeldCall& call)> permitted;
        std::string free = {};  ///< a user's name
    };
    /// What is said of an occurrence; false from `make` where it has gone.
    struct Change {
        const char* right;
        std::string token;
        std::function<bool(SchedulerHost& host, const std::string& token, const std::string& by)> make;
        std::string free = {};
    };

    template <auto kAnswer>
    static int read(sd_bus_message* call, void* self, sd_bus_error* error);
    int upcoming(sd_bus_message* call) const;
    int outcomes(sd_bus_message* call) const;
    int status(sd_bus_message* call) const;
    int modules(sd_bus_message* call) const;
    int pauses(sd_bus_message* call) const;
    static int skip(sd_bus_message* call, void* self, sd_bus_error* error);
    static int unskip(sd_bus_message* call, void* self, sd_bus_error* error);
    static int postpone(sd_bus_message* call, void* self, sd_bus_error* error);
    static int tryNow(sd_bus_message* call, void* self, sd_bus_error* error);
    static int pause(sd_bus_message* call, void* self, sd_bus_error* error);
    static int resume(sd_bus_message* call, void* self, sd_bus_error* error);

    int change(sd_bus_message* call, const Change& wanted, sd_bus_error* error);
    int begin(sd_bus_message* call, const Request& request);
    Dictionary answerOf(const Pause& pause) const;

    Callers& _callers;
    SchedulerHost& _host;
    const PlanInPlace& _plan;
    UserLimit _limit{10};
    BusSlot _object;
};

}  // namespace quorel
