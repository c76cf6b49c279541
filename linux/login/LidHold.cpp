#include "linux/login/LidHold.h"

#include <chrono>
#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

/// logind waits five seconds for its delay locks.
constexpr std::chrono::seconds kPatience{2};
constexpr std::chrono::seconds kBetweenLooks{5};

}  // namespace

BusSlot readLid(sd_bus* bus, std::function<void(Lid)> answered) {
    const auto read = [answered = std::move(answered)](sd_bus_message* reply) {
        Lid lid;
        if (!errorOf(reply))
            logind::readProperties(reply, [&](const std::string& name, const std::string&) {
                if (name == "LidClosed") lid.isClosed = logind::readFlag(reply);
                if (name == "OnExternalPower") lid.isPowered = logind::readFlag(reply);
            });
        answered(lid);
    };
    return logind::call(bus, kPatience, logind::kManagerProperties, "GetAll", read, "s", logind::kManager.interface);
}

LidHold::LidHold(EventLoop& loop, sd_bus* bus, std::function<void(Lid)> seen)
    : _bus(bus),
      _seen(std::move(seen)),
      _lock(bus, "handle-lid-switch", "block"),
      _timer(
          loop, [this] { askForLid(); }, CLOCK_MONOTONIC) {}

void LidHold::hold(bool hold) {
    if (!hold) {
        _timer.stop();
        _call.reset();
        return _lock.release();
    }
    _lock.take("A Schedule has woken this computer.", [](const BusError& error) {
        MOLLog("The closed lid may send the computer to sleep again: %s", error.message.c_str());
    });
    _timer.start(kBetweenLooks);
}

void LidHold::askForLid() {
    _timer.start(kBetweenLooks);
    _call = readLid(_bus, [this](Lid lid) {
        const auto call = std::move(_call);
        _seen(lid);
    });
}

}  // namespace quorel
