#pragma once

#include <functional>
#include <optional>
#include <string>

#include "linux/EventLoop.h"
#include "linux/FileDescriptor.h"
#include "linux/time/Clocks.h"

namespace quorel {

/// Waits for an instant of the wall clock, and notices when that clock is set or its zone changes. It causes no other
/// wake-ups. One thread.
class ClockWatch {
public:
    struct Events {
        std::function<void()> ticked;  ///< the instant is there, or the clock was set, or the computer has slept
        std::function<void()> zoneChanged;
    };
    /// `clocks` and `loop` must outlive it. `settings` is the folder in which "localtime" says what zone it is, mostly
    /// by leading to a file of the zones' own package, which may be replaced, too.
    ClockWatch(EventLoop& loop, const Clocks& clocks, Events events, const char* settings = "/etc");

    /// The next instant to wait for, also one that has passed; none: only changes count.
    void waitFor(std::optional<Instant> instant);

private:
    void read();
    void watchZone();
    EventSource watch(const std::string& folder, sd_event_inotify_handler_t changed);
    static bool concerns(const inotify_event& event, const std::string& name);

    EventLoop& _loop;
    const Clocks& _clocks;
    const Events _events;
    const std::string _settings;
    std::string _zone;  ///< the name of the file that "localtime" leads to
    std::optional<Instant> _instant;
    FileDescriptor _timer;
    EventSource _timerSource;
    EventSource _settingsSource;
    EventSource _zoneSource;
};

}  // namespace quorel
