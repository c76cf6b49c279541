#include "linux/bus/PublicConnection.h"

#include <sys/socket.h>

#include <cstdint>

namespace quorel {

namespace {

/// What the kernel keeps counts as sent. sd-bus has it keep megabytes, of which the bus takes two kilobytes at a turn.
constexpr int kKeptByKernel = 64 * 1024;

}  // namespace

PublicConnection::PublicConnection(EventLoop& loop) : _loop(loop), _bus(connectTo(Bus::System, loop)) {
    setsockopt(sd_bus_get_fd(_bus.get()), SOL_SOCKET, SO_SNDBUF, &kKeptByKernel, sizeof kKeptByKernel);
    sd_bus_slot* slot = nullptr;
    sd_bus_add_filter(_bus.get(), &slot, received, this);
    _filter.reset(slot);
    pause(true);
    pause(false);
}

void PublicConnection::pause(bool pauses) {
    if (pauses)
        sd_bus_detach_event(_bus.get());
    else
        sd_bus_attach_event(_bus.get(), _loop.get(), SD_EVENT_PRIORITY_NORMAL + 10);
}

bool PublicConnection::isBehind() const {
    std::uint64_t unsent = 0;
    return sd_bus_get_n_queued_write(_bus.get(), &unsent) >= 0 && unsent > kMostUnsent;
}

int PublicConnection::received(sd_bus_message* message, void* self, sd_bus_error*) {
    const char* caller = sd_bus_message_get_sender(message);
    if (!caller || sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    return static_cast<PublicConnection*>(self)->mayCall(caller) ? 0 : 1;
}

bool PublicConnection::mayCall(const std::string& caller) {
    if (_unanswered.contains(caller)) return false;
    if (!_turn) {
        _calls.clear();
        // Which any bus answers; one that refuses writes a line into its log for each.
        const auto ask =
            newCall(_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId");
        _turn = callAsync(_bus.get(), ask.get(), kLongestReply, [this](sd_bus_message*) { _turn.reset(); });
    }
    if (++_calls[caller] <= kMostAtOnce) return true;
    if (_unanswered.size() >= kMostRemembered) _unanswered.clear();
    _unanswered.insert(caller);
    return false;
}

}  // namespace quorel
