#include "linux/login/SleepWatch.h"

#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

/// logind waits five seconds for its delay locks.
constexpr std::chrono::seconds kLidPatience{2};
constexpr std::chrono::seconds kBetweenAttempts{5};
constexpr int kMostAttempts = 12;

}  // namespace

SleepWatch::SleepWatch(EventLoop& loop, sd_bus* bus, Events events)
    : _bus(bus),
      _events(std::move(events)),
      _lock(bus, "sleep:shutdown", "delay"),
      _lockTimer(
          loop, [this] { takeLock(); }, CLOCK_MONOTONIC) {
    _sleepSignal = logind::watch(_bus, "PrepareForSleep",
                                 [this](sd_bus_message* signal) { sleepAnnounced(logind::readFlag(signal)); });
    _shutdownSignal = logind::watch(_bus, "PrepareForShutdown",
                                    [this](sd_bus_message* signal) { shutdownAnnounced(logind::readFlag(signal)); });
    _ownerSignal = watchOwner(_bus, logind::kName, [this](const std::string& owner) {
        if (owner.empty()) return;
        _lock.release();  // the one before has forgotten it
        takeLock();
    });
    takeLock();
}

void SleepWatch::takeLock() {
    _lock.take("Alarms are to be set.", [this](const BusError& error) {
        if (error.name == logind::kUnderWay && ++_attempts < kMostAttempts) return _lockTimer.start(kBetweenAttempts);
        MOLLog("Alarms may not be set in time before sleep: %s", error.message.c_str());
    });
}

/// The lock is to be had again when the computer is back, of which there may be no word.
void SleepWatch::letGo() {
    _lock.release();
    _attempts = 0;
    _lockTimer.start(kBetweenAttempts);
}

void SleepWatch::sleepAnnounced(bool begins) {
    if (!begins) return ended();
    askLid([this](bool lidClosed) {
        _events.goingToSleep(lidClosed);
        letGo();
    });
}

void SleepWatch::shutdownAnnounced(bool begins) {
    if (!begins) return ended();
    _events.goingDown();
    letGo();
}

void SleepWatch::ended() {
    _attempts = 0;
    takeLock();
    askLid(_events.resumed);
}

void SleepWatch::askLid(std::function<void(bool lidClosed)> then) {
    const auto answered = [this, then = std::move(then)](sd_bus_message* reply) {
        const auto call = std::move(_lidCall);
        bool closed = false;
        bool powered = false;
        if (!errorOf(reply))
            logind::readProperties(reply, [&](const std::string& name, const std::string&) {
                if (name == "LidClosed") closed = logind::readFlag(reply);
                if (name == "OnExternalPower") powered = logind::readFlag(reply);
            });
        then(closed && !powered);
    };
    _lidCall = logind::call(_bus, kLidPatience, logind::kManagerProperties, "GetAll", answered, "s",
                            logind::kManager.interface);
}

}  // namespace quorel
