#pragma once

#include <array>
#include <functional>

#include "linux/login/Logind.h"
#include "scheduler/World.h"

namespace quorel {

/// What logind calls a kind of sleep.
struct SleepCalls {
    SleepKind kind;
    const char* call;  ///< takes flags
    const char* can;   ///< whether it is to be had
};
inline constexpr std::array kSleepCalls = {
    SleepCalls{SleepKind::kSuspend, "SuspendWithFlags", "CanSuspend"},
    SleepCalls{SleepKind::kHibernate, "HibernateWithFlags", "CanHibernate"},
    SleepCalls{SleepKind::kSuspendThenHibernate, "SuspendThenHibernateWithFlags", "CanSuspendThenHibernate"},
    SleepCalls{SleepKind::kAsTheSystemDoes, "Sleep", "CanSleep"},  // since systemd 256
};

/// Asks logind which kinds of sleep this computer does not have. One thread; the bus must outlive it.
class SleepKinds {
public:
    /// `told` hears all that are denied, after each answer. Where logind says nothing, what it said last counts.
    SleepKinds(sd_bus* bus, std::function<void(const DeniedKinds&)> told) : _bus(bus), _told(std::move(told)) {}

    void ask();

private:
    void answered(SleepKind kind, sd_bus_message* reply);

    sd_bus* _bus;
    const std::function<void(const DeniedKinds&)> _told;
    std::array<BusSlot, kSleepCalls.size()> _calls;
    DeniedKinds _denied;
};

}  // namespace quorel
