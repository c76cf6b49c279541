#include "linux/BusCaller.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace quorel {

// An sd_bus_track would do the same, but waits for the bus when a name is added.
BusCaller::BusCaller(sd_bus* bus, std::string name, std::function<void()> gone)
    : _bus(bus), _name(std::move(name)), _gone(std::move(gone)) {
    const auto left = [](sd_bus_message*, void* self, sd_bus_error*) {
        const auto told = std::move(static_cast<BusCaller*>(self)->_gone);
        told();
        return 0;
    };
    const auto ignored = [](sd_bus_message*, void*, sd_bus_error*) { return 0; };
    const std::string match =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='" +
        _name + "',arg2=''";
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_match_async(bus, &slot, match.c_str(), left, ignored, this);
    if (result < 0) throw std::runtime_error(std::strerror(-result));
    _leaving.reset(slot);
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
