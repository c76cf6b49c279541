#pragma once

#include <systemd/sd-login.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"
#include "linux/bus/PolkitQuestion.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "scheduler/Instant.h"
#include "scheduler/Rules.h"

namespace quorel {

/// The daemon as its user's agent sees it: what comes next, and what the agent is to do. All of it is fetched by calls
/// to the daemon's name, which only root can have; its signals, and whoever comes to the screen or leaves it, only say
/// that it may be worth fetching again, a few times a second at most. Without a system bus, or while no daemon runs,
/// there is nothing to see. The thread of the loop.
class DaemonLink {
public:
    struct Callbacks {
        std::function<void()> changed;  ///< anything of what can be asked here
        std::function<void(std::int64_t question)> idleAsked;
    };
    using Refused = std::function<void(const std::string& reason)>;

    DaemonLink(EventLoop& loop, Callbacks callbacks);
    DaemonLink(const DaemonLink&) = delete;

    /// Asks for everything anew, soon.
    void refresh() { fetch(); }

    bool isThere() const { return _isThere; }
    /// As the daemon's methods of these names answer; empty while it is not there.
    const Array& upcoming() const { return _upcoming.array(); }
    const Array& pauses() const { return _pauses.array(); }
    const Array& outcomes() const { return _outcomes.array(); }  ///< the last few
    const Array& actions() const { return _work[wire::keys::kActions].array(); }
    bool watchesUse() const { return _work[wire::keys::kWatch].intValue() != 0; }
    /// What polkit lets this user do without asking anybody.
    bool maySkip() const { return _maySkip; }
    bool mayPostpone() const { return _mayPostpone; }
    bool mayPause() const { return _mayPause; }

    /// `refused` is called later, if at all; its reason is for the user.
    void skip(const std::string& token, Refused refused);
    void unskip(const std::string& token, Refused refused);
    void postpone(const std::string& token, Refused refused, Seconds length = rules::kPostponement);
    void pauseUntilTomorrow(Refused refused);
    void resume(Instant from, Refused refused);
    /// Nothing for the seconds: it cannot be told.
    void reportIdle(std::int64_t question, std::optional<Seconds> idle);
    void reportAction(const std::string& token, const std::string& end, int status, const std::string& reason);

private:
    struct Interface {
        const char* path;
        const char* name;
    };
    static constexpr Interface kScheduler{wire::scheduler::kPath, wire::scheduler::kInterface};
    static constexpr Interface kAgents{wire::agents::kPath, wire::agents::kInterface};
    BusMessagePointer newCall(const Interface& interface, const char* method) const;
    void send(const std::string& key, const BusMessagePointer& call, std::function<void(sd_bus_message*)> replied);
    void read(const Interface& interface, const char* method, std::optional<std::uint32_t> most, Value& into);
    void askPolkit(const char* action, bool& allowed);
    void registerAgent();
    void fetch();
    void fetched();
    void change(const char* method, const std::string& about, Refused refused,
                const std::function<void(sd_bus_message*)>& append);
    void ownerChanged(bool isThere);
    void watchLogins(EventLoop& loop);

    const Callbacks _callbacks;
    const BusConnection _bus;  // null where there is none
    std::string _name;         // this program's, on it
    BusSlot _owner;
    BusSlot _schedulerHints;
    BusSlot _agentHints;
    std::unique_ptr<sd_login_monitor, Release<sd_login_monitor_unref>> _logins;
    EventSource _loginSource;
    std::map<std::string, BusSlot> _calls;  // under way
    std::map<std::string, PolkitQuestion> _questions;
    std::size_t _missing = 0;  // answers to the last fetch
    bool _again = false;       // hints have come since
    LoopTimer _pause;          // between two fetches
    LoopTimer _retry;          // where another agent of the user is registered, or somebody has not answered
    bool _isThere = false;
    bool _isRegistered = false;
    Value _upcoming, _pauses, _outcomes, _work;
    bool _maySkip = false;
    bool _mayPostpone = false;
    bool _mayPause = false;
    std::int64_t _answered = 0;  // the last question about idleness
};

}  // namespace quorel
