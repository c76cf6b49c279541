#include "linux/BusCaller.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace quorel {

BusCaller::BusCaller(sd_bus* bus, std::string name, std::function<void()> gone)
    : _bus(bus), _name(std::move(name)), _gone(std::move(gone)) {
    const auto left = [](sd_bus_track*, void* self) {
        const auto told = std::move(static_cast<BusCaller*>(self)->_gone);
        told();
        return 0;
    };
    sd_bus_track* presence = nullptr;
    int result = sd_bus_track_new(bus, &presence, left, this);
    _presence.reset(presence);
    if (result >= 0) result = sd_bus_track_add_name(presence, _name.c_str());
    if (result < 0) throw std::runtime_error(std::strerror(-result));
}

BusCaller::~BusCaller() = default;

void BusCaller::findUser(std::function<void(std::optional<unsigned>)> found) {
    const auto call =
        newCall(_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixUser");
    sd_bus_message_append(call.get(), "s", _name.c_str());
    _user = callAsync(_bus, call.get(), std::chrono::seconds(10), [found = std::move(found)](sd_bus_message* reply) {
        std::uint32_t user = 0;
        const bool said = !sd_bus_message_is_method_error(reply, nullptr) && sd_bus_message_read(reply, "u", &user) > 0;
        found(said ? std::optional<unsigned>(user) : std::nullopt);
    });
}

void BusCaller::ask(const char* action, bool interaction, std::function<void(Verdict)> answered) {
    _question.emplace(_bus, _name, action, interaction,
                      [answered = std::move(answered)](const std::optional<PolkitQuestion::Answer>& answer) {
                          if (!answer) return answered(Verdict::NobodyToAsk);
                          if (answer->authorized) return answered(Verdict::Allowed);
                          answered(answer->dismissed ? Verdict::Dismissed : Verdict::Refused);
                      });
}

}  // namespace quorel
