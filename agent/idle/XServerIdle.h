#pragma once

#include <memory>

#include "agent/idle/IdleSource.h"
#include "linux/EventLoop.h"
#include "linux/FileDescriptor.h"

struct xcb_connection_t;

namespace quorel {

/// What the X server counts; nothing under Wayland, where it would know of its own windows alone.
///
/// xcb waits for a server that accepts and then says nothing, without end: a thread of its own connects, and hands the
/// connection to the loop, where replies are only ever taken when they are there.
class XServerIdle final : public IdleSource {
public:
    explicit XServerIdle(EventLoop& loop) : _loop(loop) {}
    void ask(Told told) override;

private:
    struct CloseDisplay {
        void operator()(xcb_connection_t* display) const;
    };

    void connect();
    void connected();
    void question();
    void readable();
    void tell(std::optional<Seconds> idle);
    void drop();

    EventLoop& _loop;
    Told _told;                // while a question waits
    FileDescriptor _delivery;  // while a thread connects: what it hands over comes here
    EventSource _deliverySource;
    std::unique_ptr<xcb_connection_t, CloseDisplay> _display;
    EventSource _displaySource;
    unsigned _sequence = 0;  // of the question; 0 for none
};

}  // namespace quorel
