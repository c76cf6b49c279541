#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "linux/bus/Bus.h"
#include "linux/login/SleepKinds.h"
#include "model/Value.h"
#include "scheduler/Instant.h"

namespace quorel::qt {

/// The daemon's side of what the window shows: what comes next, what happened, and how things stand. Fetched by calls
/// to the daemon's name, again whenever a signal says that it may be worth it. The thread of the loop.
class Plan {
public:
    /// An error's name and text; both empty where it was done.
    using Done = std::function<void(const std::string& error, const std::string& text)>;

    Plan(EventLoop& loop, std::function<void()> changed);
    Plan(const Plan&) = delete;

    bool isThere() const { return _isThere; }
    const Array& upcoming() const { return _upcoming.array(); }
    const Value& status() const { return _status; }
    const DeniedKinds& deniedKinds() const { return _denied; }  ///< of sleep, as the system says
    const Array& pauses() const { return _pauses.array(); }
    const Array& outcomes() const { return _outcomes.array(); }  ///< oldest first

    /// What leaves out the occurrence of this action at this instant, a pause or a skip: until then. Nothing where it
    /// stands.
    std::optional<Instant> leftOutUntil(Instant due, const std::string& action) const;

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
    bool _isThere = false;
    DeniedKinds _denied;
    std::optional<SleepKinds> _kinds;
    Value _upcoming, _outcomes, _status, _pauses;
};

}  // namespace quorel::qt
