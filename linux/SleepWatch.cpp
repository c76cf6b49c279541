#include "linux/SleepWatch.h"

#include <utility>

#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
/// How long after the computer has woken up, or might have gone to sleep, logind may take to say so. It has been known
/// not to.
constexpr std::uint64_t kEndPatience = 30 * kSecond;
/// logind waits five seconds for its delay locks.
constexpr std::uint64_t kLidPatience = 2 * kSecond;
constexpr int kMostAttempts = 30;

}  // namespace

SleepWatch::SleepWatch(sd_event* loop, sd_bus* bus, const Clocks& clocks, Events events)
    : _loop(loop), _bus(bus), _clocks(clocks), _events(std::move(events)), _lock(bus, "sleep:shutdown", "delay") {
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
    _lock.take("Alarms are to be set.", [this](const BusError& error) {
        if (error.name == logind::kUnderWay && ++_attempts < kMostAttempts) {
            _lockTimer = callLater(_loop, kSecond, [this] { takeLock(); });
            return;
        }
        _attempts = 0;
        MOLLog("Alarms may not be set in time before sleep: %s", error.message.c_str());
    });
}

void SleepWatch::sleepAnnounced(bool begins) {
    if (!begins) return ended();
    _sleptBefore = sleptSinceBoot(_clocks.now());
    expectEnd(true);
    askLid([this](bool lidClosed) {
        _events.goingToSleep(lidClosed);
        _lock.release();
    });
}

// The timer stands still while the computer sleeps.
void SleepWatch::expectEnd(bool mayNotHaveBegun) {
    _endTimer = callLater(_loop, kEndPatience, [this, mayNotHaveBegun] {
        const bool hasSlept = sleptSinceBoot(_clocks.now()) - _sleptBefore >= 1000;
        if (mayNotHaveBegun && !hasSlept) return expectEnd(false);
        MOLLog("logind does not say that the computer is awake.");
        ended();
    });
}

void SleepWatch::ended() {
    _endTimer.reset();
    _attempts = 0;
    takeLock();
    askLid(_events.resumed);
}

void SleepWatch::shutdownAnnounced(bool begins) {
    if (!begins) return ended();
    _events.goingDown();
    _lock.release();
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
