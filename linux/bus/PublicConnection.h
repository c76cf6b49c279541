#pragma once

#include "linux/bus/Bus.h"

namespace quorel {

/// A connection to the system's bus on which whoever likes to may call this program. Its own questions go over another
/// one, so that neither they nor their answers stand behind what strangers have sent: the bus hands over one message
/// after the other, whoever has sent it, a few at a turn.
class PublicConnection {
public:
    /// As connectTo, but everything else on the loop comes first. Throws std::runtime_error.
    explicit PublicConnection(EventLoop& loop);
    PublicConnection(const PublicConnection&) = delete;

    sd_bus* get() const { return _bus.get(); }
    /// While it pauses, nothing is read or sent: what comes stays with the bus, which counts it against the sender.
    void pause(bool pauses);

private:
    EventLoop& _loop;
    const BusConnection _bus;
};

}  // namespace quorel
