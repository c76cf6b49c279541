#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"
#include "scheduler/Instant.h"

struct xcb_connection_t;

namespace quorel {

/// How long nobody has used this session: as GNOME's compositor says, or else the X server, which under Wayland would
/// know of its own windows alone. While a player plays, somebody watches or listens. One thread.
class IdleMeter {
public:
    /// Nothing where nobody here can tell.
    using Measured = std::function<void(std::optional<Seconds>)>;

    /// The session bus, which the loop serves, must outlive it.
    explicit IdleMeter(sd_bus* session);
    ~IdleMeter();
    IdleMeter(const IdleMeter&) = delete;

    /// `measured` is called later, within two seconds. A measurement that is under way does for both.
    void measure(Measured measured);

private:
    void ask(const std::string& key, const BusMessagePointer& call, std::function<void(sd_bus_message*)> replied);
    void askPlayers(sd_bus_message* names);
    void finishIfComplete();
    std::optional<Seconds> askServer();

    struct CloseDisplay {
        void operator()(xcb_connection_t* display) const;
    };

    sd_bus* const _session;
    std::map<std::string, BusSlot> _calls;  // under way
    std::vector<Measured> _waiting;
    std::optional<Seconds> _idle;
    bool _plays = false;
    std::unique_ptr<xcb_connection_t, CloseDisplay> _display;
};

}  // namespace quorel
