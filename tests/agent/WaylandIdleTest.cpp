#include "agent/idle/WaylandIdle.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>

#include "linux/FileDescriptor.h"

namespace quorel {
namespace {

using namespace std::chrono_literals;

/// A compositor in a few words of the wire: it offers what it is told to, and says what the test has it say.
class Compositor {
public:
    explicit Compositor(std::vector<std::string> offers)
        : _offers(std::move(offers)), _listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{AF_UNIX, {}};
        _path.copy(address.sun_path, sizeof address.sun_path - 1);
        std::filesystem::remove(_path);
        EXPECT_EQ(bind(_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(_listener.get(), 1), 0);
        setenv("WAYLAND_DISPLAY", _path.c_str(), 1);
    }
    ~Compositor() { std::filesystem::remove(_path); }

    void serve() {
        if (!_client) _client = FileDescriptor(accept(_listener.get(), nullptr, nullptr));
        std::array<std::uint32_t, 4096> words;
        const auto size = recv(_client.get(), words.data(), sizeof words, MSG_DONTWAIT);
        for (std::size_t at = 0; size > 0 && at < static_cast<std::size_t>(size) / 4; at += words[at + 1] >> 18)
            take(words[at], words[at + 1] & 0xffff, &words[at + 2], &words[at + (words[at + 1] >> 18) - 1]);
    }
    void say(std::uint32_t object, std::uint32_t event, std::vector<std::uint32_t> words = {}) {
        words.insert(words.begin(), {object, static_cast<std::uint32_t>(words.size() + 2) << 18 | event});
        EXPECT_GT(send(_client.get(), words.data(), words.size() * 4, MSG_NOSIGNAL), 0);
    }
    /// Of the notification of so many milliseconds that was made last.
    std::uint32_t notification(std::uint32_t pause) const {
        return _notifications.contains(pause) ? _notifications.at(pause) : 0;
    }

private:
    void take(std::uint32_t object, std::uint32_t request, const std::uint32_t* words, const std::uint32_t* last) {
        if (object == 1 && request == 0) say(words[0], 0, {0});  // all is done
        if (object == 1 && request == 1) {
            _registry = words[0];
            for (std::uint32_t name = 0; name < _offers.size(); ++name) offer(name);
        }
        if (object == _registry && request == 0) _bound[_offers[words[0]]] = *last;
        if (object == _bound["ext_idle_notifier_v1"] && request == 1) _notifications[words[1]] = words[0];
    }
    void offer(std::uint32_t name) {
        const auto size = static_cast<std::uint32_t>(_offers[name].size() + 1);
        std::vector<std::uint32_t> words(2 + (size + 3) / 4);
        words[0] = name;
        words[1] = size;
        std::memcpy(&words[2], _offers[name].data(), size);
        words.push_back(1);
        say(_registry, 0, words);
    }

    const std::vector<std::string> _offers;
    const std::string _path = testing::TempDir() + "compositor" + std::to_string(getpid());
    FileDescriptor _listener, _client;
    std::uint32_t _registry = 0;
    std::map<std::string, std::uint32_t> _bound;
    std::map<std::uint32_t, std::uint32_t> _notifications;
};

constexpr std::uint32_t kStanding = 800, kFresh = 1000, kIdled = 0, kResumed = 1;

TEST(WaylandIdle, CountsFromWhatTheCompositorSaysAndBelievesAFreshNotificationAlone) {
    const std::vector<std::string> all = {"wl_seat", "ext_idle_notifier_v1"};
    const struct {
        std::vector<std::string> offers;
        std::vector<std::uint32_t> events;  // more than a second after one another, the last before the question
        bool confirms;
        std::optional<Seconds> least, most;
        int used;
    } cases[] = {
        {{"wl_seat"}, {}, false, {}, {}, 0},
        {all, {}, false, 0, 0, 0},
        {all, {kIdled}, true, 2, 30, 0},
        {all, {kIdled}, false, 0, 0, 0},
        {all, {kIdled, kResumed}, false, 0, 0, 1},
        {all, {kIdled, kIdled, kIdled}, true, 2, 3, 0},  // somebody was back, and the compositor never said so
    };
    for (const auto& [offers, events, confirms, least, most, used] : cases) {
        SCOPED_TRACE(testing::PrintToString(offers) + testing::PrintToString(events) + (confirms ? "confirmed" : ""));
        Compositor compositor(offers);
        EventLoop loop;
        int heard = 0;
        bool isTold = false;
        std::optional<Seconds> told;
        WaylandIdle idle(loop, [&heard] { ++heard; });
        const auto run = [&](auto until) {
            for (const auto end = std::chrono::steady_clock::now() + 20s;
                 !until() && std::chrono::steady_clock::now() < end;) {
                compositor.serve();
                sd_event_run(loop.get(), 10'000);
            }
        };
        const auto pass = [&](std::chrono::milliseconds time) {
            const auto end = std::chrono::steady_clock::now() + time;
            run([end] { return std::chrono::steady_clock::now() >= end; });
        };
        pass(100ms);
        if (offers == all) run([&] { return compositor.notification(kStanding) != 0; });
        for (const std::uint32_t event : events) {
            compositor.say(compositor.notification(kStanding), event);
            pass(1300ms);
        }
        const std::uint32_t standing = compositor.notification(kStanding);
        idle.ask([&](std::optional<Seconds> seconds) {
            isTold = true;
            told = seconds;
        });
        if (confirms) {
            run([&] { return compositor.notification(kFresh) != 0; });
            compositor.say(compositor.notification(kFresh), kIdled);
        }
        run([&] { return isTold; });
        EXPECT_TRUE(isTold);
        EXPECT_GE(told, least);
        EXPECT_LE(told, most);
        EXPECT_EQ(heard, used);
        pass(50ms);
        // It counts anew where nothing came and nobody said why.
        EXPECT_EQ(compositor.notification(kStanding) != standing, events.size() == 1 && !confirms);
    }
}

}  // namespace
}  // namespace quorel
