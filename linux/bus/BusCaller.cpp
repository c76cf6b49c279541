#include "linux/bus/BusCaller.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace quorel {

const char* textOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::Dismissed:
            return "The question for permission was dismissed.";
        case Verdict::NobodyToAsk:
            return "Permission cannot be asked for.";
        default:
            return "This takes an administrator's permission.";
    }
}

// An sd_bus_track would do the same, but waits for the bus when a name is added.
BusCaller::BusCaller(sd_bus* bus, std::string name, std::function<void()> gone)
    : _bus(bus),
      _name(std::move(name)),
      _leaving(watchOwner(bus, _name, [gone = std::move(gone)](const std::string& owner) {
          if (owner.empty()) gone();
      })) {}

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
