#pragma once

#include <map>
#include <string>

#include "agent/idle/IdleSource.h"
#include "linux/bus/Bus.h"

namespace quorel {

/// While a player plays, somebody watches or listens. Otherwise they tell nothing.
class Players final : public IdleSource {
public:
    /// The session bus, which a loop serves, must outlive it.
    explicit Players(sd_bus* session) : _session(session) {}
    void ask(Told told) override;

private:
    void call(const std::string& key, const BusMessagePointer& message, std::function<void(sd_bus_message*)> replied);
    void askEach(sd_bus_message* names);

    sd_bus* const _session;
    Told _told;
    std::map<std::string, BusSlot> _calls;  // under way
    bool _plays = false;
};

}  // namespace quorel
