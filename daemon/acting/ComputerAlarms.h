#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "linux/time/Clocks.h"
#include "linux/time/StartupAlarm.h"
#include "linux/time/WakeAlarm.h"
#include "scheduler/World.h"

namespace quorel {

/// The computer's two alarms, and whether it has them. What stands in their way is said once.
class ComputerAlarms : public Alarms {
public:
    struct Options {
        bool wake = true;   ///< whether the kernel is to be asked for wake alarms
        std::string clock;  ///< the kernel's folder of the hardware clock
        std::string note;   ///< a file that says which start-up alarm is ours
    };
    /// The start-up alarm of an earlier run stays until another is armed. `clocks` and the loop must outlive it.
    ComputerAlarms(EventLoop& loop, const Clocks& clocks, Options options);

    bool reachFar() const override { return _reachFar; }
    void armWake(std::optional<Instant> at) override;
    void armStartup(std::optional<Instant> at) override;

    /// What stands in the way of an alarm.
    struct Obstacle {
        std::string_view fault;         ///< one of `wire::alarm_fault`; empty where nothing does
        std::string reason;             ///< what the system says, or empty
        std::optional<Instant> others;  ///< when somebody else's alarm, or the moved one, comes
    };
    Obstacle waking() const;
    Obstacle starting() const;

private:
    /// Of an alarm that was set for then.
    Obstacle standing(Instant at) const;

    const Clocks& _clocks;
    const bool _arms;
    WakeAlarm _wake;
    StartupAlarm _startup;
    WakeAlarm::Ability _ability;
    bool _reachFar;
    std::string _wakeFailure;
    std::optional<Instant> _startupAt;
    StartupAlarm::Setting _startupSetting;
};

}  // namespace quorel
