#include "agent/idle/GnomeIdle.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace quorel {

namespace {

constexpr std::chrono::seconds kPatience{1};

}  // namespace

void GnomeIdle::ask(Told told) {
    const auto call = newCall(_session, "org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core",
                              "org.gnome.Mutter.IdleMonitor", "GetIdletime");
    sd_bus_message_set_auto_start(call.get(), false);
    _call = callAsync(_session, call.get(), kPatience, [told = std::move(told)](sd_bus_message* reply) {
        std::uint64_t milliseconds = 0;
        const bool tells = !errorOf(reply) && sd_bus_message_read(reply, "t", &milliseconds) > 0;
        told(tells ? std::optional<Seconds>(milliseconds / 1000) : std::nullopt);
    });
}

}  // namespace quorel
