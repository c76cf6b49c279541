#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"
#include "linux/time/Clocks.h"
#include "scheduler/World.h"

namespace quorel {

/// A session as logind describes it.
struct LoginSession {
    Session session;
    std::string terminal;  ///< "tty2", "pts/0", or whatever was said where it began; empty: none
    unsigned userId = 0;
    bool counts = false;  ///< of class "user" or one of its kin, such as root's "user-early", and not closing
    bool isActive = false;

    /// From the answer of GetAll; nothing where it is none.
    static std::optional<LoginSession> from(sd_bus_message* properties, Instant now);
};

/// Asks for one by its path. The answer is nothing where it could not be read.
BusSlot readLoginSession(sd_bus* bus, const char* path, const Clocks& clocks,
                         std::function<void(std::optional<LoginSession>, const BusError&)> answered);

/// Asks who sits at the computer: the user of the session that its own seat shows, where that counts. Nothing for
/// nobody. `answered` is called once, later, unless this has gone, which it may let happen.
class SeatedUser {
public:
    SeatedUser(sd_bus* bus, const Clocks& clocks, std::function<void(std::optional<unsigned>)> answered);
    SeatedUser(const SeatedUser&) = delete;

private:
    void answer(std::optional<unsigned> user);

    std::function<void(std::optional<unsigned>)> _answered;
    BusSlot _call;
};

/// Notices who comes and goes. One thread; `clocks` and the bus must outlive it.
class LoginSessions {
public:
    /// `used`: a session that counts became active, or there is a new one.
    LoginSessions(sd_bus* bus, const Clocks& clocks, std::function<void(const LoginSession&)> used);

    /// Since the later of the last log-out, the last `restart` and when this object was made.
    Seconds sinceLastLogOut() const;
    void restart();

private:
    void readSession(const char* path);

    sd_bus* _bus;
    const Clocks& _clocks;
    const std::function<void(const LoginSession&)> _used;
    std::int64_t _quietSince;               ///< boot time
    std::map<std::string, BusSlot> _reads;  ///< by path
    BusSlot _added;
    BusSlot _removed;
    BusSlot _changed;
};

}  // namespace quorel
