#include "ctl/Hints.h"

#include <string>
#include <utility>

#include "model/Wire.h"

namespace quorel {

Hints::Hints() : _bus(beginConnection(Bus::System)) {
    if (!_bus) return;
    const std::string daemon(kDaemonName), rule = std::string("member='") + wire::scheduler::kChanged +
                                                  "',interface='" + wire::scheduler::kInterface + "'";
    _owner = watchOwner(_bus.get(), daemon, [this](const std::string&) { _heard = true; });
    _changed = watchSignals(_bus.get(), daemon, rule, [this](sd_bus_message*) { _heard = true; });
}

bool Hints::wait() {
    constexpr std::chrono::hours kForLong{24};  // a call in vain then
    if (!_bus) return false;
    const auto end = std::chrono::steady_clock::now() + kForLong;
    const bool isHeard = serveUntil(_bus.get(), end, [this] { return std::exchange(_heard, false); });
    return isHeard || std::chrono::steady_clock::now() >= end;
}

}  // namespace quorel
