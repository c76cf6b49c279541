#pragma once

#include <functional>
#include <map>
#include <string>

#include "linux/login/LoginSessions.h"
#include "scheduler/World.h"

namespace quorel {

/// Asks logind, once, for what may keep the computer from sleeping. One thread; `sessions`, `clocks` and the bus must
/// outlive it.
class LoginConditions {
public:
    /// `userIds` are those of `conditions.sessions`, in their order. Called once, last of all, and never from inside
    /// the constructor; it may destroy the object.
    using Answered = std::function<void(Conditions conditions, const std::vector<unsigned>& userIds)>;
    LoginConditions(sd_bus* bus, const Clocks& clocks, const LoginSessions& sessions, Answered answered);
    LoginConditions(const LoginConditions&) = delete;

private:
    void readInhibitors(sd_bus_message* reply);
    void readShutdown(sd_bus_message* reply);
    void readSessions(sd_bus_message* reply);
    void readSession(const std::string& path, const std::optional<LoginSession>& found, const BusError& error);
    void fail(const std::string& reason);
    void finishIfComplete();

    sd_bus* _bus;
    const Clocks& _clocks;
    const LoginSessions& _watch;
    Answered _answered;
    Conditions _conditions;
    std::vector<unsigned> _userIds;
    std::map<std::string, BusSlot> _calls;  ///< those without an answer, by whatever names them
};

}  // namespace quorel
