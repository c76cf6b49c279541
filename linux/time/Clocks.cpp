#include "linux/time/Clocks.h"

#include <sys/timex.h>

namespace quorel {

namespace {

std::int64_t millisecondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

}  // namespace

ClockReading Clocks::now() const {
    timex state{};  // asks, and sets nothing
    const int answer = adjtimex(&state);
    const std::int64_t awake = millisecondsOf(CLOCK_MONOTONIC);  // first: it is never to be ahead of the other
    return {millisecondsOf(CLOCK_REALTIME), millisecondsOf(CLOCK_BOOTTIME), awake, answer >= 0 && answer != TIME_ERROR};
}

}  // namespace quorel
