#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "linux/login/LidHold.h"
#include "linux/login/LoginConditions.h"
#include "linux/login/LoginSessions.h"
#include "linux/login/Logind.h"
#include "scheduler/World.h"

namespace quorel {

/// Sleep and shut-down by logind, and what speaks against them. Where logind is absent, silent or refuses, the answer
/// says so. One thread; `clocks`, loop and bus must outlive it.
class LoginPower : public Power {
public:
    struct Answers {
        std::function<void(Ticket, const Conditions&)> conditionsRead;
        std::function<void(Ticket, PowerReply, const std::string& reason)> powerReplied;
        std::function<void(Lid)> lidSeen;          ///< while it is held
        std::function<void(bool keep)> keptAwake;  ///< for desktops that overlook the lock
        /// Adds what others than logind know of how long the sessions, whose users these are, have not been used, and
        /// calls `done` now or later.
        std::function<void(Conditions, const std::vector<unsigned>& userIds, std::function<void(Conditions)> done)>
            findIdle;
    };
    LoginPower(EventLoop& loop, sd_bus* bus, const Clocks& clocks, LoginSessions& sessions, Answers answers);

    void readConditions(Ticket ticket, bool idle) override;
    void suspend(Ticket ticket, SleepKind kind) override;
    void shutDown(Ticket ticket, bool restart) override;
    void keepAwake(bool keep) override;
    void holdLid(bool hold) override { _lidHold.hold(hold); }

private:
    void request(Ticket ticket, const char* member, std::chrono::seconds patience);

    sd_bus* _bus;
    const Clocks& _clocks;
    const LoginSessions& _sessions;
    const Answers _answers;
    std::map<Ticket, std::unique_ptr<LoginConditions>> _looks;
    BusSlot _request;
    InhibitorLock _idleLock;
    LidHold _lidHold;
};

}  // namespace quorel
