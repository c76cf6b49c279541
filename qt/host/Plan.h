#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"
#include "linux/login/SleepKinds.h"
#include "qt/host/Told.h"

namespace quorel::qt {

/// The daemon's side of what the window shows: what comes next, what happened, and how things stand. Fetched by calls
/// to the daemon's name, again whenever a signal says that it may be worth it. The thread of the loop.
class Plan {
public:
    /// An error's name and text; both empty where it was done.
    using Done = std::function<void(const std::string& error, const std::string& text)>;

    Plan(EventLoop& loop, std::function<void()> changed);
    Plan(const Plan&) = delete;

    const Told& told() const { return _told; }

    void fetch();
    /// Calls one of the daemon's methods, with seconds where it takes them. It asks polkit and with it a person; `done`
    /// is called later, once.
    void change(const char* method, const std::string& token, std::optional<Seconds> by, Done done);
    /// From now until tomorrow morning; the pause that began then is over.
    void pause(Done done);
    void resume(Instant from, Done done);

private:
    void read(const char* method, std::optional<unsigned> most, Value& into);
    BusMessagePointer newCall(const char* method) const;
    void ask(const std::string& key, const BusMessagePointer& call, Done done);
    void send(const std::string& key, const BusMessagePointer& call, std::chrono::seconds limit,
              std::function<void(sd_bus_message*)> replied);
    void fetched();

    const std::function<void()> _changed;
    BusConnection _bus;
    BusSlot _owner, _hints;
    std::map<std::string, BusSlot> _calls;
    LoopTimer _pause;
    int _missing = 0;
    bool _again = false;
    Told _told;
    std::optional<SleepKinds> _kinds;
};

}  // namespace quorel::qt
