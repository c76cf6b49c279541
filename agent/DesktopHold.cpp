#include "agent/DesktopHold.h"

#include <chrono>
#include <iterator>
#include <utility>

#include "words/Language.h"

namespace quorel {

namespace {

// Whatever is answered late is held, too, and can be let go of; a program that goes ends the call.
constexpr std::chrono::hours kPatience{24};
constexpr const char* kWho = "Quorel";

// "The session is not to be taken for idle", by which the screen stays on. To forbid sleep alone is no way: GNOME
// passes that on to logind as a block, and our own Schedules' sleep, and the user's, would wait for it.
constexpr std::uint32_t kNotIdle = 8;
constexpr std::uint32_t kNoWindow = 0;

}  // namespace

// GNOME's session manager, which others are made after; and the power managers of XFCE and others.
const DesktopHold::Means DesktopHold::kMeans[] = {
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager", "Uninhibit", true},
    {"org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit",
     "org.freedesktop.PowerManagement.Inhibit", "UnInhibit", false},
};

DesktopHold::DesktopHold(sd_bus* session) : _session(session) {
    _holds.reserve(std::size(kMeans));  // callbacks keep references
    for (const Means& means : kMeans) {
        Hold& hold = _holds.emplace_back(Hold{.means = means});
        hold.owner = watchOwner(session, means.name, [this, &hold](const std::string& owner) {
            hold.call.reset();
            hold.number.reset();
            if (!owner.empty()) settle(hold);
        });
    }
}

void DesktopHold::keepAwake(bool keep) {
    if (keep == std::exchange(_keeps, keep)) return;
    for (Hold& hold : _holds) settle(hold);
}

/// What is asked for is waited for, or nobody could let go of it.
void DesktopHold::settle(Hold& hold) {
    if (hold.call || _keeps == hold.number.has_value()) return;
    if (_keeps) return ask(hold);
    const Means& means = hold.means;
    const auto release = newCall(_session, means.name, means.path, means.interface, means.release);
    sd_bus_message_append(release.get(), "u", *std::exchange(hold.number, {}));
    sd_bus_message_set_expect_reply(release.get(), false);
    sd_bus_send(_session, release.get(), nullptr);
}

void DesktopHold::ask(Hold& hold) {
    const Means& means = hold.means;
    const char* const why = translated("A Schedule keeps this computer awake.");
    const auto call = newCall(_session, means.name, means.path, means.interface, "Inhibit");
    sd_bus_message_set_auto_start(call.get(), false);
    if (means.isGnome)
        sd_bus_message_append(call.get(), "susu", kWho, kNoWindow, why, kNotIdle);
    else
        sd_bus_message_append(call.get(), "ss", kWho, why);
    hold.call = callAsync(_session, call.get(), kPatience, [this, &hold](sd_bus_message* reply) {
        const BusSlot ended = std::move(hold.call);
        std::uint32_t number = 0;
        if (errorOf(reply) || sd_bus_message_read(reply, "u", &number) <= 0) return;
        hold.number = number;
        settle(hold);
    });
}

}  // namespace quorel
