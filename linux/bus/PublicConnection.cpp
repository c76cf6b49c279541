#include "linux/bus/PublicConnection.h"

namespace quorel {

PublicConnection::PublicConnection(EventLoop& loop) : _loop(loop), _bus(connectTo(Bus::System, loop)) {
    pause(true);
    pause(false);
}

void PublicConnection::pause(bool pauses) {
    if (pauses)
        sd_bus_detach_event(_bus.get());
    else
        sd_bus_attach_event(_bus.get(), _loop.get(), SD_EVENT_PRIORITY_NORMAL + 10);
}

}  // namespace quorel
