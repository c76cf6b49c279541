#include "agent/idle/WaylandIdle.h"

#include <ext-idle-notify-v1.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <wayland-client.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "linux/FileDescriptor.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;  // stands still while the computer sleeps, as other sources' do

constexpr auto kStandingPause = 800ms;
constexpr auto kFreshPause = 1000ms;  // longer: by then the standing one has counted anew where there was any use
constexpr auto kPatience = 1700ms;    // within what an answer may take

template <class Object, auto kLetGo>
using Owned = std::unique_ptr<Object, Release<kLetGo>>;
using Notification = Owned<ext_idle_notification_v1, ext_idle_notification_v1_destroy>;

/// No file where there is none, or where it has no place for another program now: nothing here waits for one.
FileDescriptor connectToSocket() {
    const char* name = std::getenv("WAYLAND_DISPLAY");
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (!name || (name[0] != '/' && !folder)) return FileDescriptor();
    const std::string path = name[0] == '/' ? name : std::string(folder) + '/' + name;
    sockaddr_un address{AF_UNIX, {}};
    if (path.size() >= sizeof address.sun_path) return FileDescriptor();
    std::memcpy(address.sun_path, path.c_str(), path.size());
    FileDescriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(file.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) file.close();
    return file;
}

}  // namespace

struct WaylandIdle::Compositor {
    Owned<wl_display, wl_display_disconnect> display;
    EventSource source;
    Owned<wl_registry, wl_registry_destroy> registry;
    /// To all that was said last; while there is one, it is still to come.
    Owned<wl_callback, wl_callback_destroy> answer;
    Owned<wl_seat, wl_seat_destroy> seat;  // the first that it named, and nearly always the only one
    Owned<ext_idle_notifier_v1, ext_idle_notifier_v1_destroy> notifier;
    Notification standing;  // counts all the time
    Notification fresh;     // while a question waits for it
    std::optional<Clock::time_point> unusedSince;
    std::uint32_t seatName = 0;
    std::uint32_t notifierName = 0;
    bool isOver = false;

    Notification newNotification(std::chrono::milliseconds pause, WaylandIdle* told) const;
};

/// What the compositor sends. The connection must not be closed in here: it is being read.
struct WaylandEvents {
    static WaylandIdle& idle(void* self) { return *static_cast<WaylandIdle*>(self); }

    static void comes(void* self, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
        auto& compositor = *idle(self)._compositor;
        if (interface == std::string_view(wl_seat_interface.name) && !compositor.seat) {
            compositor.seat.reset(static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1)));
            compositor.seatName = name;
        }
        if (interface == std::string_view(ext_idle_notifier_v1_interface.name) && !compositor.notifier) {
            compositor.notifier.reset(static_cast<ext_idle_notifier_v1*>(
                wl_registry_bind(registry, name, &ext_idle_notifier_v1_interface, 1)));
            compositor.notifierName = name;
        }
    }
    static void goes(void* self, wl_registry*, std::uint32_t name) {
        auto& compositor = *idle(self)._compositor;
        if (name == compositor.seatName || name == compositor.notifierName) compositor.isOver = true;
    }
    static void answered(void* self, wl_callback*, std::uint32_t) { idle(self).answered(); }
    static void idled(void* self, ext_idle_notification_v1* notification) { idle(self).isUnused(notification); }
    static void resumed(void* self, ext_idle_notification_v1*) { idle(self).isUsedAgain(); }

    static constexpr wl_registry_listener kRegistry{comes, goes};
    static constexpr wl_callback_listener kAnswer{answered};
    static constexpr ext_idle_notification_v1_listener kNotification{idled, resumed};
};

Notification WaylandIdle::Compositor::newNotification(std::chrono::milliseconds pause, WaylandIdle* told) const {
    Notification notification(ext_idle_notifier_v1_get_idle_notification(
        notifier.get(), static_cast<std::uint32_t>(pause.count()), seat.get()));
    ext_idle_notification_v1_add_listener(notification.get(), &WaylandEvents::kNotification, told);
    return notification;
}

WaylandIdle::WaylandIdle(EventLoop& loop, std::function<void()> used)
    : _loop(loop),
      _used(std::move(used)),
      _patience(
          loop, [this] { isSilent(); }, CLOCK_MONOTONIC) {
    connect();
}

WaylandIdle::~WaylandIdle() = default;

void WaylandIdle::connect() {
    FileDescriptor file = connectToSocket();
    if (!file) return;
    _compositor = std::make_unique<Compositor>();
    Compositor& compositor = *_compositor;
    compositor.display.reset(wl_display_connect_to_fd(file.release()));  // which closes it in the end
    if (!compositor.display) return _compositor.reset();
    compositor.source = whenReadable(_loop, wl_display_get_fd(compositor.display.get()), [this] { readable(); });
    compositor.registry.reset(wl_display_get_registry(compositor.display.get()));
    wl_registry_add_listener(compositor.registry.get(), &WaylandEvents::kRegistry, this);
    awaitAnswer();
}

void WaylandIdle::readable() {
    wl_display* const display = _compositor->display.get();
    const bool isRead = wl_display_prepare_read(display) == 0 && wl_display_read_events(display) == 0;
    if (!isRead || wl_display_dispatch_pending(display) < 0 || _compositor->isOver) {
        _compositor.reset();
        return tell({});
    }
    wl_display_flush(display);
}

/// Everything that the compositor has to offer is known by then.
void WaylandIdle::answered() {
    Compositor& compositor = *_compositor;
    compositor.answer.reset();
    if (!compositor.standing && compositor.notifier && compositor.seat)
        compositor.standing = compositor.newNotification(kStandingPause, this);
    if (_told && !compositor.fresh) question();
}

void WaylandIdle::ask(Told told) {
    _told = std::move(told);
    if (!_compositor) connect();
    if (!_compositor) return tell({});
    _patience.start(kPatience);
    if (!_compositor->answer) question();
}

void WaylandIdle::question() {
    Compositor& compositor = *_compositor;
    if (!compositor.standing) return tell({});
    if (!compositor.unusedSince) return tell(0);
    compositor.fresh = compositor.newNotification(kFreshPause, this);
    awaitAnswer();
}

void WaylandIdle::isUnused(const void* notification) {
    Compositor& compositor = *_compositor;
    if (notification == compositor.standing.get()) compositor.unusedSince = Clock::now() - kStandingPause;
    if (notification != compositor.fresh.get()) return;
    compositor.fresh.reset();
    const auto unused = Clock::now() - compositor.unusedSince.value_or(Clock::now());
    tell(std::chrono::duration_cast<std::chrono::seconds>(unused).count());
}

void WaylandIdle::isUsedAgain() {
    _compositor->unusedSince.reset();
    _compositor->fresh.reset();
    tell(0);
    _used();
}

/// The compositor either works and says nothing, since somebody uses the computer, or does nothing at all.
void WaylandIdle::isSilent() {
    if (!_compositor || _compositor->answer) {
        _compositor.reset();
        return tell({});
    }
    _compositor->fresh.reset();
    _compositor->unusedSince.reset();
    _compositor->standing = _compositor->newNotification(kStandingPause, this);
    wl_display_flush(_compositor->display.get());
    tell(0);
}

void WaylandIdle::awaitAnswer() {
    wl_display* const display = _compositor->display.get();
    _compositor->answer.reset(wl_display_sync(display));
    wl_callback_add_listener(_compositor->answer.get(), &WaylandEvents::kAnswer, this);
    wl_display_flush(display);
}

void WaylandIdle::tell(std::optional<Seconds> idle) {
    _patience.stop();
    if (const Told told = std::exchange(_told, nullptr)) told(idle);
}

}  // namespace quorel
