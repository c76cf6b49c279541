#pragma once

#include <systemd/sd-login.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "linux/bus/DaemonView.h"
#include "linux/bus/PolkitQuestion.h"
#include "model/Wire.h"

namespace quorel {

/// The daemon as its user's agent sees it: the plan, what the agent is to do, and what its user may; fetched anew also
/// when somebody comes to the screen or leaves it. The thread of the loop.
class DaemonLink {
public:
    struct Callbacks {
        std::function<void()> changed;  ///< anything of what can be asked here
        std::function<void(std::int64_t question)> idleAsked;
    };

    DaemonLink(EventLoop& loop, Callbacks callbacks);
    DaemonLink(const DaemonLink&) = delete;

    DaemonView& plan() { return _plan; }
    bool isThere() const { return _plan.told().isThere; }
    const Array& upcoming() const { return _plan.told().upcoming.array(); }
    const Array& pauses() const { return _plan.told().pauses.array(); }
    const Array& outcomes() const { return _plan.told().outcomes.array(); }  ///< the last few
    const Array& actions() const { return _work[wire::keys::kActions].array(); }
    bool watchesUse() const { return _work[wire::keys::kWatch].intValue() != 0; }
    /// Desktops are not to put the computer to sleep.
    bool keepsAwake() const { return _work[wire::keys::kKeepAwake].intValue() != 0; }
    /// What polkit lets this user do without asking anybody.
    bool maySkip() const { return _maySkip; }
    bool mayPostpone() const { return _mayPostpone; }
    bool mayPause() const { return _mayPause; }

    /// Nothing for the seconds: it cannot be told.
    void reportIdle(std::int64_t question, std::optional<Seconds> idle);
    void reportAction(const std::string& token, const std::string& end, int status, const std::string& reason);

private:
    void alsoRead();
    void askPolkit(const char* action, bool& allowed);
    void registerAgent();
    void ownerChanged();
    void watchLogins(EventLoop& loop);

    const Callbacks _callbacks;
    DaemonView _plan;
    const std::string _name;  // this program's, on the bus
    std::unique_ptr<sd_login_monitor, Release<sd_login_monitor_unref>> _logins;
    EventSource _loginSource;
    std::map<std::string, PolkitQuestion> _questions;
    LoopTimer _retry;  // where another agent of the user is registered, or polkit has not answered
    bool _isRegistered = false;
    Value _work;
    bool _maySkip = false;
    bool _mayPostpone = false;
    bool _mayPause = false;
    std::int64_t _answered = 0;  // the last question about idleness
};

}  // namespace quorel
