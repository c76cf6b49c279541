#pragma once

#include <optional>
#include <string>

#include "linux/EventLoop.h"
#include "linux/FileDescriptor.h"
#include "scheduler/Instant.h"

namespace quorel {

/// The alarm that wakes the computer from sleep. The kernel queues it with everybody else's and moves it when the clock
/// is set. Which clock wakes the computer is the kernel's choice.
class WakeAlarm {
public:
    enum class Ability {
        kWakes,
        kNoClock,    ///< no clock of this computer has an alarm
        kForbidden,  ///< for want of CAP_WAKE_ALARM
    };
    static Ability ability();

    /// Nothing is taken until the first alarm is set.
    explicit WakeAlarm(EventLoop& loop) : _loop(loop) {}

    /// In place of the one before; none takes that away. Why it failed, or an empty text.
    std::string set(std::optional<Instant> at);

private:
    void read();

    EventLoop& _loop;
    FileDescriptor _timer;
    EventSource _source;
};

}  // namespace quorel
