#include "linux/time/WakeAlarm.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>

namespace quorel {

// A timerfd of that clock can be had even where nothing wakes the computer, and is an ordinary timer then. This call
// tells the truth.
WakeAlarm::Ability WakeAlarm::ability() {
    sigevent silent{};
    silent.sigev_notify = SIGEV_NONE;
    timer_t timer{};
    if (timer_create(CLOCK_REALTIME_ALARM, &silent, &timer) != 0)
        return errno == EPERM ? Ability::kForbidden : Ability::kNoClock;
    timer_delete(timer);
    return Ability::kWakes;
}

std::string WakeAlarm::set(std::optional<Instant> at) {
    if (!_timer) {
        if (!at) return {};
        _timer = FileDescriptor(timerfd_create(CLOCK_REALTIME_ALARM, TFD_NONBLOCK | TFD_CLOEXEC));
        if (!_timer) return std::strerror(errno);
        _source = whenReadable(_loop, _timer.get(), [this] { read(); });
    }
    itimerspec time{};
    if (at) time.it_value = {*at, 0};
    return timerfd_settime(_timer.get(), TFD_TIMER_ABSTIME, &time, nullptr) == 0 ? std::string() : std::strerror(errno);
}

/// It has woken the computer, which was all; what is due by now is for others to find out.
void WakeAlarm::read() {
    std::uint64_t expirations = 0;
    [[maybe_unused]] const ssize_t got = ::read(_timer.get(), &expirations, sizeof expirations);
}

}  // namespace quorel
