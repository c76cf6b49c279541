#include "linux/time/Clocks.h"

namespace quorel {

namespace {

std::int64_t millisecondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

}  // namespace

Now Clocks::now() const {
    const std::int64_t awake = millisecondsOf(CLOCK_MONOTONIC);  // first: it is never to be ahead of the other
    return {millisecondsOf(CLOCK_REALTIME), millisecondsOf(CLOCK_BOOTTIME), awake};
}

}  // namespace quorel
