#include "daemon/acting/ComputerAlarms.h"

#include <cstdlib>
#include <utility>

#include "kit/MOLLog.h"
#include "model/Wire.h"

namespace quorel {

namespace {

using Result = StartupAlarm::Result;
namespace alarm_fault = wire::alarm_fault;

const char* textOf(Result result) {
    switch (result) {
        case Result::kAbsent:
            return "this computer has no clock with an alarm";
        case Result::kPast:
            return "its time is too close";
        case Result::kTooFar:
            return "its time is further ahead than the computer's clock can be set";
        case Result::kTaken:
            return "somebody else's alarm is set, and is earlier";
        case Result::kReplaced:
            return "it replaces somebody else's";
        default:
            return "it cannot be set";
    }
}

}  // namespace

ComputerAlarms::ComputerAlarms(EventLoop& loop, const Clocks& clocks, Options options)
    : _clocks(clocks),
      _arms(options.wake),
      _wake(loop),
      _startup(std::move(options.clock), std::move(options.note)),
      _ability(_arms ? WakeAlarm::ability() : WakeAlarm::Ability::kNoClock) {
    if (!_arms)
        MOLLog("No wake alarm is armed: the daemon runs below a folder of its own.");
    else if (_ability == WakeAlarm::Ability::kNoClock)
        MOLLog("Nothing can wake this computer: no clock has an alarm.");
    else if (_ability == WakeAlarm::Ability::kForbidden)
        MOLLog("The system does not let the daemon set wake alarms.");
    _reachFar = _startup.reachesFar();
}

void ComputerAlarms::armWake(std::optional<Instant> at) {
    if (_ability != WakeAlarm::Ability::kWakes) return;
    _wakeFailure = _wake.set(at);
    if (!_wakeFailure.empty()) MOLLog("The wake alarm cannot be set: %s.", _wakeFailure.c_str());
}

void ComputerAlarms::armStartup(std::optional<Instant> at) {
    const Result before = _startupSetting.result;
    _startupSetting = _startup.set(at, _clocks.now().instant());
    _startupAt = at;
    const Result result = _startupSetting.result;
    if (result == Result::kDone || (result == before && result != Result::kReplaced)) return;
    if (!at && result == Result::kAbsent) return;  // which matters to nobody
    MOLLog("The start-up alarm: %s%s%s.", textOf(result), _startupSetting.reason.empty() ? "" : ": ",
           _startupSetting.reason.c_str());
}

ComputerAlarms::Obstacle ComputerAlarms::waking() const {
    if (!_arms) return {alarm_fault::kOff, {}, {}};
    if (_ability == WakeAlarm::Ability::kForbidden) return {alarm_fault::kForbidden, {}, {}};
    if (_ability != WakeAlarm::Ability::kWakes) return {alarm_fault::kNoClock, {}, {}};
    return {_wakeFailure.empty() ? std::string_view() : alarm_fault::kFailed, _wakeFailure, {}};
}

ComputerAlarms::Obstacle ComputerAlarms::starting() const {
    if (!_startup.exists()) return {_arms ? alarm_fault::kNoClock : alarm_fault::kOff, {}, {}};
    switch (_startupSetting.result) {
        case Result::kPast:
            return {alarm_fault::kPast, {}, {}};
        case Result::kTooFar:
            return {alarm_fault::kTooFar, {}, {}};
        case Result::kTaken:
            return {alarm_fault::kTaken, {}, _startupSetting.others};
        case Result::kFailed:
            return {alarm_fault::kFailed, _startupSetting.reason, {}};
        default:
            return _startupAt ? standing(*_startupAt) : Obstacle{};
    }
}

ComputerAlarms::Obstacle ComputerAlarms::standing(Instant at) const {
    const Instant now = _clocks.now().instant();
    const auto comes = _startup.comes(now);
    if (at <= now) return {};
    if (!comes) return {alarm_fault::kGone, {}, {}};
    return std::abs(*comes - at) > kMinute ? Obstacle{alarm_fault::kMoved, {}, comes} : Obstacle{};
}

}  // namespace quorel
