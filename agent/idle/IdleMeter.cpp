#include "agent/idle/IdleMeter.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "agent/idle/GnomeIdle.h"
#include "agent/idle/Players.h"
#include "agent/idle/WaylandIdle.h"
#include "agent/idle/XServerIdle.h"

namespace quorel {

namespace {

constexpr std::chrono::seconds kPatience{2};

}  // namespace

IdleMeter::IdleMeter(EventLoop& loop, sd_bus* session, std::function<void()> used)
    : _limit(loop, [this] { finish(); }) {
    _sources.push_back(std::make_unique<GnomeIdle>(session));
    _sources.push_back(std::make_unique<Players>(session));
    _sources.push_back(std::make_unique<XServerIdle>(loop));
    _sources.push_back(std::make_unique<WaylandIdle>(loop, std::move(used)));
}

void IdleMeter::measure(Measured measured) {
    _waiting.push_back(std::move(measured));
    if (_limit.isRunning()) return;
    _limit.start(kPatience);
    _idle.reset();
    _missing = _sources.size();
    const std::size_t round = ++_round;
    for (const auto& source : _sources) {
        source->ask([this, round](std::optional<Seconds> idle) {
            if (round == _round) told(idle);
        });
    }
}

void IdleMeter::told(std::optional<Seconds> idle) {
    if (idle) _idle = std::min(*idle, _idle.value_or(*idle));
    if (--_missing == 0) _limit.start({});
}

void IdleMeter::finish() {
    ++_round;
    for (const Measured& measured : std::exchange(_waiting, {})) measured(_idle);
}

}  // namespace quorel
