#pragma once

#include <memory>
#include <optional>

#include "agent/idle/IdleSource.h"
#include "linux/EventLoop.h"

namespace quorel {

/// What a Wayland compositor says by ext-idle-notify-v1: that a short while has passed without use, and that somebody
/// is back. The time between is counted here, from the agent's start on. Nothing where the compositor lacks the
/// protocol.
///
/// Some compositors never say that somebody is back. So whoever asks is answered after a fresh notification alone: it
/// comes when nobody uses the computer now, and where it does not, somebody does.
class WaylandIdle final : public IdleSource {
public:
    /// `used` is called whenever somebody comes back after a pause.
    WaylandIdle(EventLoop& loop, std::function<void()> used);
    ~WaylandIdle() override;
    void ask(Told told) override;

private:
    friend struct WaylandEvents;
    struct Compositor;

    void connect();
    void readable();
    void answered();
    void question();
    void isUnused(const void* notification);
    void isUsedAgain();
    void isSilent();
    void awaitAnswer();
    void tell(std::optional<Seconds> idle);

    EventLoop& _loop;
    const std::function<void()> _used;
    Told _told;  // while a question waits
    LoopTimer _patience;
    std::unique_ptr<Compositor> _compositor;  // while there is a connection
};

}  // namespace quorel
