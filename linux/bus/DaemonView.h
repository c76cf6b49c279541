#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "linux/bus/Bus.h"
#include "model/Value.h"
#include "scheduler/Rules.h"

namespace quorel {

/// The daemon as other programs see it: what it tells of the plan, and what can be said to it. All of it is fetched by
/// calls to the daemon's name, which only root can have and which start nothing; its signals only say that it may be
/// worth fetching again, a few times a second at most. Without a system bus, or while no daemon runs, there is nothing
/// to see. The thread of the loop.
class DaemonView {
public:
    /// What it has told last, as its methods of these names answer. Where it does not answer, that stays; where it is
    /// gone, it is empty.
    struct Told {
        bool isThere = false;    ///< it has answered
        bool isFetched = false;  ///< whether it is there is known
        Value upcoming{}, outcomes{}, status{}, pauses{};
    };
    struct Needs {
        unsigned outcomes;  ///< the last so many
        bool status;
        bool asksPeople;  ///< what is said to it may have polkit ask for a password
    };
    struct Callbacks {
        std::function<void()> changed;            ///< all that was asked for has come
        std::function<void()> alsoRead = {};      ///< within a fetch: the program's own reads
        std::function<void()> ownerChanged = {};  ///< another daemon, or none
    };
    /// Later, once; the error is none where it was done. Not where the same is said again meanwhile.
    using Done = std::function<void(const BusError&)>;
    struct Interface {
        const char* path;
        const char* name;
    };

    /// Its maker fetches first.
    DaemonView(EventLoop& loop, Needs needs, Callbacks callbacks);
    DaemonView(const DaemonView&) = delete;

    const Told& told() const { return _told; }
    sd_bus* bus() const { return _bus.get(); }  ///< null where there is none

    void fetch();
    /// Fetches whenever the daemon says that something of this interface has changed.
    void watch(const Interface& interface);
    /// What a method answers, as part of the fetch under way.
    void read(const Interface& interface, const char* method, std::optional<unsigned> most, Value& into,
              std::function<void()> heard = {});
    /// The fetch waits for something else, which `answered` ends.
    void expect() { ++_missing; }
    void answered();

    BusMessagePointer newCall(const Interface& interface, const char* method) const;
    /// One call a key at a time: another takes its place. False where it could not be sent.
    bool send(const std::string& key, const BusMessagePointer& call, std::chrono::seconds limit,
              std::function<void(sd_bus_message*)> replied);

    void skip(const std::string& token, Done done);
    void unskip(const std::string& token, Done done);
    void postpone(const std::string& token, Done done, Seconds length = rules::kPostponement);
    /// From now until tomorrow morning.
    void pause(Done done);
    /// The pause of that token is over.
    void resume(const std::string& token, Done done);

private:
    void change(const char* method, const std::string& token, std::optional<Seconds> by, Done done);
    void ask(const std::string& key, const BusMessagePointer& call, Done done);
    void ownerChanged(bool isThere);

    const Needs _needs;
    const Callbacks _callbacks;
    const BusConnection _bus;
    std::vector<BusSlot> _watches;
    std::map<std::string, BusSlot> _calls;  // under way
    std::size_t _missing = 0;               // answers to the last fetch
    bool _again = false;                    // hints have come since
    LoopTimer _pause;                       // between two fetches
    LoopTimer _retry;                       // where the daemon has not answered
    Told _told;
};

/// Whether an error says that nobody has the daemon's name.
bool saysGone(const BusError& error);

}  // namespace quorel
