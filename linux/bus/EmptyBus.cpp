#include "linux/bus/EmptyBus.h"

#include <sys/socket.h>
#include <systemd/sd-id128.h>

#include <cerrno>
#include <system_error>

namespace quorel {

namespace {

void check(int result) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), "no empty bus");
}

BusConnection newConnection(int socket) {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus));
    BusConnection connection(bus);
    check(sd_bus_set_fd(bus, socket, socket));
    return connection;
}

}  // namespace

EmptyBus::EmptyBus(EventLoop& loop) {
    int ends[2];
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) < 0 ? -errno : 0);
    _far = newConnection(ends[0]);
    _near = newConnection(ends[1]);
    sd_id128_t id{};
    check(sd_id128_randomize(&id));
    check(sd_bus_set_server(_far.get(), true, id));
    for (sd_bus* bus : {_far.get(), _near.get()}) {
        // What is still to be said here nobody reads once the loop has ended; waiting for that would never end.
        check(sd_bus_set_close_on_exit(bus, false));
        check(sd_bus_start(bus));
        check(sd_bus_attach_event(bus, loop.get(), SD_EVENT_PRIORITY_NORMAL));
    }
}

}  // namespace quorel
