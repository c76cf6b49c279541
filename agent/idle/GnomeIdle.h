#pragma once

#include "agent/idle/IdleSource.h"
#include "linux/bus/Bus.h"

namespace quorel {

/// What GNOME's compositor counts, under Wayland and X alike.
class GnomeIdle final : public IdleSource {
public:
    /// The session bus, which a loop serves, must outlive it.
    explicit GnomeIdle(sd_bus* session) : _session(session) {}
    void ask(Told told) override;

private:
    sd_bus* const _session;
    BusSlot _call;
};

}  // namespace quorel
