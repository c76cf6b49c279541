#include "linux/SleepWatch.h"

#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

/// logind waits five seconds for its delay locks.
constexpr std::uint64_t kLidPatience = 2'000'000;
constexpr std::uint64_t kBetweenAttempts = 5'000'000;
constexpr int kMostAttempts = 12;

}  // namespace

SleepWatch::SleepWatch(sd_event* loop, sd_bus* bus, Events events)
    : _loop(loop), _bus(bus), _events(std::move(events)), _lock(bus, "sleep:shutdown", "delay") {
    _sleepSignal = watchBus(_bus, logind::signalRule("PrepareForSleep"),
                            [this](sd_bus_message* signal) { sleepAnnounced(logind::readFlag(signal)); });
    _shutdownSignal = watchBus(_bus, logind::signalRule("PrepareForShutdown"),
                               [this](sd_bus_message* signal) { shutdownAnnounced(logind::readFlag(signal)); });
    const auto ownerChanged = [this](sd_bus_message* signal) {
        const char* owner = nullptr;
        if (sd_bus_message_read(signal, "sss", nullptr, nullptr, &owner) < 0 || !*owner) return;
        _lock.release();  // the one before has forgotten it
        takeLock();
    };
    _ownerSignal = watchBus(_bus,
                            "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                            "member='NameOwnerChanged',arg0='org.freedesktop.login1'",
                            ownerChanged);
    takeLock();
}

void SleepWatch::takeLock() {
    _lockTimer.reset();
    _lock.take("Alarms are to be set.", [this](const BusError& error) {
        if (error.name == logind::kUnderWay && ++_attempts < kMostAttempts) return takeLockLater();
        MOLLog("Alarms may not be set in time before sleep: %s", error.message.c_str());
    });
}

/// The timer stands still while the computer sleeps.
void SleepWatch::takeLockLater() {
    _lockTimer = callLater(_loop, kBetweenAttempts, [this] { takeLock(); });
}

/// The lock is to be had again when the computer is back, of which there may be no word.
void SleepWatch::letGo() {
    _lock.release();
    _attempts = 0;
    takeLockLater();
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
    BusRequest request = newRequest(_bus, logind::kManagerProperties, "GetAll");
    if (!request || sd_bus_message_append(request.get(), "s", logind::kManager.interface) < 0) return;
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
    _lidCall = callAsync(_bus, std::move(request), answered, kLidPatience);
}

}  // namespace quorel
