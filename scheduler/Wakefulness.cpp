#include "scheduler/Wakefulness.h"

#include <algorithm>

#include "scheduler/Outcome.h"
#include "scheduler/Rules.h"

namespace quorel {

void Wakefulness::start(const ClockReading& now) {
    _now = now;
    _sleptSeen = now.asleep();
    _rewrite = true;
}

void Wakefulness::observe(const ClockReading& now) {
    _now = now;
    if (_woken || !hasSlept()) return;
    const bool started = _announced && _mayWriteMemory && isNear(_startupAlarm, rules::kStartEarly);
    _woken = started               ? Woken::kByAlarm
             : !isNear(_wakeAlarm) ? Woken::kOtherwise
             : _isStone            ? Woken::kByStone
                                   : Woken::kByAlarm;
}

/// Whether it may be what has just woken the computer.
bool Wakefulness::isNear(const std::optional<Instant>& alarm, Seconds late) const {
    // A word of the waking may be late; it was not before the computer had been awake for longer than since it was
    // announced that it would sleep.
    const Seconds awake = _announced ? (_now.awake - *_announced) / 1000 : 0;
    return alarm && now() >= *alarm - rules::kAlarmEarly && now() - awake <= *alarm + late;
}

Seconds Wakefulness::longestSilence() const {
    return _mayWriteMemory ? rules::kLongestWriting : rules::kLongestSilence;
}

void Wakefulness::clockSet(Seconds by) {
    if (_back) _back->clockMoved(now() - by, by);
}

void Wakefulness::announced(Lid lid, bool mayWriteMemory) {
    _announced = _now.awake;
    _mayWriteMemory = mayWriteMemory;
    _lid = lid;
    _rewrite = true;
    used();  // whoever sends it to sleep
    holdLid(false);
}

bool Wakefulness::isBetween() const {
    return _announced && _now.awake - *_announced < longestSilence() * 1000;
}

bool Wakefulness::hasSlept() const {
    return _now.asleep() - _sleptSeen >= rules::kLeastSleep;
}

bool Wakefulness::over(std::optional<Lid> lid) {
    const bool slept = hasSlept();
    const Woken woken = _woken.value_or(Woken::kOtherwise);
    const Lid now = lid.value_or(_announced ? _lid : Lid{});
    _sleptSeen = _now.asleep();
    _woken.reset();
    _announced.reset();
    _rewrite = true;
    if (_back && slept) _back.reset();
    if (_back && _back->step() == Step::kActing) follow(_back->stayedAwake(this->now()));
    if (woken == Woken::kOtherwise) return false;
    if (now.isInBag() || woken == Woken::kByStone) {
        _backAt = _now.boot + rules::kBeforeBack * 1000;
        return now.isInBag();
    }
    _wokenAt = _now.boot;
    _wokenFor = true;
    const Seconds early = _mayWriteMemory ? rules::kStartEarly : 0;
    _awakeUntil = std::max(_awakeUntil, _now.boot + (early + rules::kAwakeToBegin) * 1000);
    if (now.isClosed) holdLid(true);
    return false;
}

void Wakefulness::holdLid(bool hold) {
    if (hold == std::exchange(_holdsLid, hold)) return;
    _hands.act([this, hold] { _power.holdLid(hold); });
}

/// Nothing keeps a closed bag warm.
void Wakefulness::lidSeen(Lid lid) {
    if (!lid.isClosed || !lid.isPowered) holdLid(false);
}

bool Wakefulness::wasWoken() const {
    return _wokenAt != 0 && _now.boot - _wokenAt <= rules::kGrace * 1000;
}

void Wakefulness::keepAwake() {
    _awakeUntil = _now.boot + rules::kKeptAwake * 1000;
}

Instant Wakefulness::awakeUntil() const {
    return _awakeUntil > _now.boot ? wallOf(_awakeUntil) : 0;
}

void Wakefulness::restore(Instant awakeUntil) {
    const Seconds left = std::min(awakeUntil - now(), rules::kKeptAwake);
    if (left > 0) _awakeUntil = _now.boot + left * 1000;
}

void Wakefulness::used() {
    _backAt = 0;
    if (_back && _back->step() != Step::kActing) _back.reset();
}

bool Wakefulness::conditionsRead(Ticket ticket, const Conditions& conditions, const std::string& running) {
    if (!_back || ticket != _backTicket) return false;
    if (wasUsed(conditions, rules::kUsedSince) || _hands.wakeUpIsNear())
        _back.reset();
    else
        follow(_back->conditionsRead(now(), holdOf(conditions, 0, running)));
    return true;
}

void Wakefulness::powerReplied(Ticket ticket, PowerReply reply, const std::string& reason) {
    if (_back && ticket == _backTicket) follow(_back->replied(now(), reply, reason));
}

void Wakefulness::follow(const PowerCourse::Move& move) {
    using Do = PowerCourse::Do;
    if (move.what == Do::kNothing) return;
    if (move.what == Do::kEnd) return _back.reset();
    const Ticket ticket = _backTicket = _hands.ticket();
    if (move.what == Do::kLook) return _hands.act([this, ticket] { _power.readConditions(ticket, true); });
    _hands.tell(outcome::kBackToSleep);
    _hands.act([this, ticket] { _power.suspend(ticket, SleepKind::kSuspend); });
}

void Wakefulness::settle(bool isRunning, bool staysAwake) {
    if (_backAt != 0 && _now.boot >= _backAt) {
        _backAt = 0;
        _back.emplace(now(), 0, true);
        follow(_back->begin(now()));
    } else if (_back && _back->next() <= now()) {
        follow(_back->reached(now()));
    }
    if (_isStone && _wakeAlarm && now() >= *_wakeAlarm) _rewrite = true;
    if (_awakeUntil <= _now.boot) _awakeUntil = 0;
    const bool keeps = _awakeUntil != 0 || (_wokenFor && isRunning);
    _wokenFor = _wokenFor && keeps;
    if (!keeps || _now.boot - _wokenAt >= rules::kLidHeld * 1000) holdLid(false);
    const bool holds = keeps || staysAwake;
    if (holds == std::exchange(_keepsAwake, holds)) return;
    _hands.act([this, holds] { _power.keepAwake(holds); });
}

std::optional<Instant> Wakefulness::nextCall() const {
    if (_announced) return now() + longestSilence() - (_now.awake - *_announced) / 1000;
    std::optional<Instant> earliest;
    const auto consider = [&](Instant at) { earliest = std::min(earliest.value_or(at), at); };
    if (_awakeUntil != 0) consider(wallOf(_awakeUntil));
    if (_holdsLid) consider(wallOf(_wokenAt + rules::kLidHeld * 1000));
    if (_backAt != 0) consider(wallOf(_backAt));
    if (_back) consider(_back->next());
    if (_isStone && _wakeAlarm) consider(*_wakeAlarm);
    return earliest;
}

/// As far ahead as alarms reach. Nothing wakes the computer within a pause, nor so soon before one that it would go
/// back to sleep within.
std::optional<Instant> Wakefulness::stone() const {
    const Instant reach = now() + rules::kAlarmReach;
    const Instant free = _hands.lastUnpaused(reach);
    const Instant at = free == reach ? reach : _hands.lastUnpaused(free - kMinute);
    return at >= now() + rules::kNearestAlarm ? std::optional(at) : std::nullopt;
}

void Wakefulness::arm(std::optional<Instant> wanted, std::optional<Instant> startup) {
    const bool asleep = _announced.has_value();
    if (asleep && _lid.isInBag()) wanted.reset();
    // It would end a suspend, too. It alone ends a hibernation.
    if (asleep && !_mayWriteMemory) startup.reset();
    const bool isFar = wanted && *wanted > now() + rules::kAlarmReach && !_alarms.reachFar();
    // A stepping stone stays where it lies until it is reached, or the computer goes to sleep, or it may no longer be.
    const bool keep = isFar && _isStone && _wakeAlarm && *_wakeAlarm > now() && !_rewrite &&
                      _hands.lastUnpaused(*_wakeAlarm) == *_wakeAlarm;
    const std::optional<Instant> wake = keep ? _wakeAlarm : isFar ? stone() : wanted;
    _isStone = isFar;
    if (wake != _wakeAlarm || _rewrite) _hands.act([this, wake] { _alarms.armWake(wake); });
    if (startup != _startupAlarm || _rewrite) _hands.act([this, startup] { _alarms.armStartup(startup); });
    _wakeAlarm = wake;
    _startupAlarm = startup;
    _rewrite = false;
}

}  // namespace quorel
