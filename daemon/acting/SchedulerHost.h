#pragma once

#include <functional>
#include <string>
#include <vector>

#include "daemon/acting/Agents.h"
#include "daemon/acting/ComputerAlarms.h"
#include "daemon/acting/StateFile.h"
#include "daemon/acting/Terminals.h"
#include "daemon/modules/ModuleActions.h"
#include "linux/login/LoginPower.h"
#include "linux/login/LoginSessions.h"
#include "linux/login/SleepKinds.h"
#include "linux/login/SleepWatch.h"
#include "linux/time/ClockWatch.h"
#include "linux/time/SystemCalendar.h"
#include "scheduler/Scheduler.h"

namespace quorel {

/// Carries the stored Schedules out: joins the scheduler to the computer. One thread.
class SchedulerHost : private Reports {
public:
    /// `root` stands before the absolute paths of what it reads and writes; below one of its own it arms no wake alarm.
    /// Logind and the service manager are on `computer`. `clocks`, loop, callers and bus must outlive it.
    SchedulerHost(EventLoop& loop, Callers& callers, sd_bus* computer, const std::string& root, const Clocks& clocks);

    /// The preferences that are in place. The first call begins.
    void follow(const Value& preferences);

    /// As the scheduler's own.
    bool skip(const std::string& token, const std::string& by);
    bool postpone(const std::string& token, const std::string& by) { return postpone(token, by, rules::kPostponement); }
    bool postpone(const std::string& token, const std::string& by, Seconds length);
    bool unskip(const std::string& token, const std::string& by);
    Scheduler::Trial tryNow(const Value& schedule);
    Pauses::Answer pause(const Pause& wanted);
    bool resume(const std::string& token, bool onlyBrief);
    /// See Pauses.h.
    Pause completed(const Pause& wanted) const;
    std::string_view faultOf(const Pause& pause) const;
    std::vector<Pause> pauses() const;

    const Scheduler& scheduler() const { return _scheduler; }
    const ComputerAlarms& alarms() const { return _alarms; }
    /// Why the state is not kept; empty where it is.
    const std::string& stateFault() const { return _state.fault(); }
    const ModuleRegistry& modules() const { return _actions.registry(); }
    /// An occurrence's, outcome's or fault's value, with the names of its "Action" where a module tells them.
    Value named(const Value& told) const;
    /// Called after what can be asked here has changed.
    std::function<void()> changedCallback;

private:
    void ended(const Outcome& outcome) override;
    void changed() override;
    void findIdle(Conditions conditions, const std::vector<unsigned>& userIds, std::function<void(Conditions)> done);

    /// Tells the scheduler something, and waits for what it waits for then.
    template <class Event>
    auto tell(Event event);

    const Clocks& _clocks;
    SystemCalendar _calendar;
    StateFile _state;
    ComputerAlarms _alarms;
    Agents _agents;
    ModuleActions _actions;
    LoginSessions _sessions;
    Terminals _terminals;
    LoginPower _power;
    SleepKinds _sleepKinds;
    Scheduler _scheduler;
    ClockWatch _clockWatch;
    SleepWatch _sleepWatch;
    bool _hasBegun = false;
};

}  // namespace quorel
