#include "agent/idle/Players.h"

#include <chrono>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quorel {

namespace {

constexpr std::chrono::milliseconds kPatience{800};  // twice within what an answer may take
constexpr std::string_view kPlayers = "org.mpris.MediaPlayer2.";
constexpr std::size_t kMostPlayers = 16;

}  // namespace

void Players::ask(Told told) {
    _told = std::move(told);
    _calls.clear();
    _plays = false;
    call("names",
         newCall(_session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames"),
         [this](sd_bus_message* reply) { askEach(reply); });
}

void Players::call(const std::string& key, const BusMessagePointer& message,
                   std::function<void(sd_bus_message*)> replied) {
    _calls[key] =
        callAsync(_session, message.get(), kPatience, [this, key, replied = std::move(replied)](sd_bus_message* reply) {
            const auto ended = _calls.extract(key);
            replied(reply);
            if (_calls.empty()) std::exchange(_told, nullptr)(_plays ? std::optional<Seconds>(0) : std::nullopt);
        });
}

void Players::askEach(sd_bus_message* names) {
    const char* name = nullptr;
    std::size_t players = 0;
    if (errorOf(names) || sd_bus_message_enter_container(names, 'a', "s") < 0) return;
    while (sd_bus_message_read(names, "s", &name) > 0) {
        if (!std::string_view(name).starts_with(kPlayers) || ++players > kMostPlayers) continue;
        const auto message =
            newCall(_session, name, "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties", "Get");
        sd_bus_message_append(message.get(), "ss", "org.mpris.MediaPlayer2.Player", "PlaybackStatus");
        call(name, message, [this](sd_bus_message* reply) {
            const char* status = "";
            if (!errorOf(reply) && sd_bus_message_read(reply, "v", "s", &status) > 0)
                _plays = _plays || status == std::string_view("Playing");
        });
    }
}

}  // namespace quorel
