#include "linux/time/ClockWatch.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

ClockWatch::ClockWatch(EventLoop& loop, const Clocks& clocks, Events events, const char* settings)
    : _clocks(clocks), _events(std::move(events)), _timer(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (!_timer) MOLLog("There is no timer: %s.", std::strerror(errno));
    _timerSource = whenReadable(loop, _timer.get(), [this] { read(); });
    waitFor(std::nullopt);

    // "localtime" is replaced, so its folder is what can be watched.
    const auto changed = [](sd_event_source*, const inotify_event* event, void* watch) {
        const bool lost = event->mask & IN_Q_OVERFLOW;
        if (lost || (event->len && std::strcmp(event->name, "localtime") == 0))
            static_cast<ClockWatch*>(watch)->_events.zoneChanged();
        return 0;
    };
    sd_event_source* source = nullptr;
    const int result = sd_event_add_inotify(loop.get(), &source, settings,
                                            IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_ONLYDIR, changed, this);
    if (result < 0) MOLLog("Changes of the time zone go unnoticed: %s.", std::strerror(-result));
    _zoneSource.reset(source);
}

void ClockWatch::waitFor(std::optional<Instant> instant) {
    _instant = instant;
    // Without an instant to wait for it still has to run, far off: only a timer that runs notices that the clock is
    // set.
    constexpr timespec kNever = {std::numeric_limits<std::uint32_t>::max(), 0};
    itimerspec at{};
    at.it_value = instant ? _clocks.realTimeOf(*instant) : kNever;
    if (at.it_value.tv_sec <= 0) at.it_value = {0, 1};  // zero would switch it off
    while (timerfd_settime(_timer.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &at, nullptr) != 0) {
        if (errno != ECANCELED) return MOLLog("The timer cannot be set: %s.", std::strerror(errno));
        at.it_value = {0, 1};  // the clock was set, which is said once: whoever waits is called at once
    }
}

void ClockWatch::read() {
    std::uint64_t expirations = 0;
    const ssize_t got = ::read(_timer.get(), &expirations, sizeof expirations);
    if (got < 0 && errno == ECANCELED)
        waitFor(_instant);
    else if (got < 0)
        return;  // something else was quicker
    else
        _instant.reset();
    _events.ticked();
}

}  // namespace quorel
