#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "agent/DaemonLink.h"
#include "agent/warning/Notifier.h"
#include "linux/EventLoop.h"

namespace quorel {

/// Tells the user that the computer is about to go to sleep or down, while there is time to say no: one notification
/// for each, which stays until it happens or somebody has decided otherwise, and then who has. The thread of the loop.
class Warnings {
public:
    /// `daemon` and the session bus must outlive it. Throws std::runtime_error.
    Warnings(EventLoop& loop, sd_bus* session, DaemonLink& daemon);
    Warnings(const Warnings&) = delete;

    /// What the daemon tells has changed.
    void update();

private:
    struct Permission {
        bool postpone = false;
        bool skip = false;
        bool operator==(const Permission&) const = default;
    };
    /// One that is announced.
    struct Warning {
        Value occurrence;
        std::unique_ptr<Notifier> notifier;
        Permission permission;    // as the buttons have it
        bool isAnswered = false;  // a button was pressed here
    };

    void show(Warning& warning);
    void renew();
    void answer(const std::string& token, const std::string& key);
    void tellWhy(const Value& occurrence);
    void tell(const Value& occurrence, const std::string& what);

    sd_bus* const _session;
    DaemonLink& _daemon;
    std::map<std::string, Warning> _warnings;  // by token
    Notifier _news;                            // what became of the last one
    LoopTimer _renewal;
};

}  // namespace quorel
