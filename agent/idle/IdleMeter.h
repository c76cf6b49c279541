#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "agent/idle/IdleSource.h"
#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"

namespace quorel {

/// How long nobody has used this session: the least that any of its sources tells. One thread.
class IdleMeter {
public:
    /// Nothing where nobody here can tell.
    using Measured = std::function<void(std::optional<Seconds>)>;

    /// The session bus, which the loop serves, must outlive it. `used` is called when somebody comes back after a
    /// pause, where a source hears of it.
    IdleMeter(EventLoop& loop, sd_bus* session, std::function<void()> used);
    IdleMeter(const IdleMeter&) = delete;

    /// `measured` is called later, within two seconds. A measurement that is under way does for both.
    void measure(Measured measured);

private:
    void told(std::optional<Seconds> idle);
    void finish();

    std::vector<std::unique_ptr<IdleSource>> _sources;
    LoopTimer _limit;
    std::vector<Measured> _waiting;
    std::size_t _missing = 0;  // answers
    std::size_t _round = 0;    // answers to an earlier one count no more
    std::optional<Seconds> _idle;
};

}  // namespace quorel
