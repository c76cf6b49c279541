#pragma once

#include <map>
#include <optional>
#include <string>

#include "daemon/acting/Acting.h"
#include "daemon/acting/ChangeLimit.h"
#include "daemon/saving/PlanInPlace.h"
#include "linux/bus/Bus.h"
#include "linux/bus/BusCaller.h"

namespace quorel {

/// The scheduler on the bus: what comes next, what became of it, how things stand, for everybody to read; and two ways
/// to say no, for whom polkit lets. docs/protocol.md has the whole of it. The thread of the loop that serves the bus.
class SchedulerInterface {
public:
    /// What it is given must outlive it. Throws std::runtime_error.
    SchedulerInterface(sd_bus* bus, Acting& acting, const PlanInPlace& plan);
    SchedulerInterface(const SchedulerInterface&) = delete;

    /// Tells whoever listens that it is worth asking again.
    void changed();

private:
    using Change = bool (Acting::*)(const std::string& token, const std::string& by);
    /// A change that was asked for and waits to be permitted.
    struct Request {
        BusMessagePointer call = {};
        std::string token = {};
        const char* action = nullptr;  // polkit's
        Change change = nullptr;
        std::optional<BusCaller> caller = {};
        std::optional<unsigned> user = {};  // once known
    };

    static int upcoming(sd_bus_message* call, void* self, sd_bus_error* error);
    static int outcomes(sd_bus_message* call, void* self, sd_bus_error* error);
    static int status(sd_bus_message* call, void* self, sd_bus_error* error);
    static int modules(sd_bus_message* call, void* self, sd_bus_error* error);
    static int skip(sd_bus_message* call, void* self, sd_bus_error* error);
    static int postpone(sd_bus_message* call, void* self, sd_bus_error* error);

    int begin(sd_bus_message* call, const char* action, Change change, sd_bus_error* error);
    void userFound(Request& request, std::optional<unsigned> user);
    void permitted(Request& request);
    void refuse(Request& request, const char* errorName, const char* text);
    void dismiss(Request& request);

    sd_bus* const _bus;
    Acting& _acting;
    const PlanInPlace& _plan;
    ChangeLimit _limit;
    std::map<std::string, Request, std::less<>> _requests;  // by the caller's bus name
    BusSlot _object;
};

}  // namespace quorel
