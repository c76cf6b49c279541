#include "linux/login/SleepWatch.h"

#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

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
    askLid([this](Lid lid) {
        _events.goingToSleep(lid);
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

void SleepWatch::askLid(std::function<void(Lid)> then) {
    _lidCall = readLid(_bus, [this, then = std::move(then)](Lid lid) {
        const auto call = std::move(_lidCall);
        then(lid);
    });
}

}  // namespace quorel
