#include "linux/time/ClockWatch.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

ClockWatch::ClockWatch(EventLoop& loop, const Clocks& clocks, Events events, const char* settings)
    : _loop(loop),
      _clocks(clocks),
      _events(std::move(events)),
      _settings(settings),
      _timer(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (!_timer) MOLLog("There is no timer: %s.", std::strerror(errno));
    _timerSource = whenReadable(loop, _timer.get(), [this] { read(); });
    waitFor(std::nullopt);
    _settingsSource = watch(_settings, [](sd_event_source*, const inotify_event* event, void* self) {
        auto& watch = *static_cast<ClockWatch*>(self);
        if (!concerns(*event, "localtime")) return 0;
        watch.watchZone();
        watch._events.zoneChanged();
        return 0;
    });
    watchZone();
}

void ClockWatch::watchZone() {
    _zoneSource.reset();
    std::error_code error;
    const auto file = std::filesystem::canonical(_settings + "/localtime", error);
    if (error || file.parent_path() == _settings) return;
    _zone = file.filename();
    _zoneSource = watch(file.parent_path(), [](sd_event_source*, const inotify_event* event, void* self) {
        const auto& watch = *static_cast<ClockWatch*>(self);
        if (concerns(*event, watch._zone)) watch._events.zoneChanged();
        return 0;
    });
}

// Files are replaced, or written in place, so their folder is what can be watched. Before it is closed, what is written
// may be half of it.
EventSource ClockWatch::watch(const std::string& folder, sd_event_inotify_handler_t changed) {
    sd_event_source* source = nullptr;
    const int result =
        sd_event_add_inotify(_loop.get(), &source, folder.c_str(),
                             IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE | IN_ONLYDIR, changed, this);
    if (result < 0) MOLLog("Changes of the time zone go unnoticed: %s.", std::strerror(-result));
    return EventSource(source);
}

bool ClockWatch::concerns(const inotify_event& event, const std::string& name) {
    return (event.mask & IN_Q_OVERFLOW) || (event.len && name == event.name);
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
