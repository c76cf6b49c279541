// What is planned: taking up what is due, telling what was missed, the alarms, what comes next.
#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>

#include "model/Wire.h"
#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace keys = wire::keys;

void Scheduler::takeList(const Value& list) {
    ListReading reading = readScheduleList(list, _world.actions, _denied);
    _list = list;
    for (const ScheduleFault& fault : reading.faults) {
        if (std::find(_faults.begin(), _faults.end(), fault) != _faults.end()) continue;  // said already
        const auto number = static_cast<std::int64_t>(fault.number);
        Outcome outcome{std::string(outcome::kCannotRun), now(), 0, fault.action, {}};
        outcome.arguments = {{keys::kNumber, number}, {keys::kReason, fault.reason}};
        act([this, outcome] { _world.reports.ended(outcome); });
    }
    _faults = std::move(reading.faults);
    _agenda.emplace(_world.calendar, std::move(reading.schedules));
}

bool Scheduler::isDenied(const ScheduleReading& schedule) const {
    return schedule.kind == ActionKind::kSleep && _denied.count(schedule.sleepKind) > 0;
}

/// When it comes into course: people are warned a minute before, though not within a pause. Nobody is warned of a sleep
/// that this computer does not have.
Instant Scheduler::courseFrom(const ScheduleReading& schedule, Instant at) const {
    const bool warns = schedule.isPower() && !isDenied(schedule) && !_pauses.cover(at);
    return warns ? std::min(_pauses.firstFree(std::max(at - rules::kWarning, now())), at) : at;
}

void Scheduler::planAnew() {
    _next = _agenda->after(_watermark, 1, nullptr, true);
    _changed = true;
}

/// Of the next minute, the first that was not skipped: that displaces nothing.
const Occurrence* Scheduler::firstOf(ActionKind kind) const {
    for (const Occurrence& one : _next) {
        const OpenOccurrence* known = one.schedule->kind == kind ? find(one) : nullptr;
        if (one.schedule->kind == kind && !(known && known->step == Step::kSkipped)) return &one;
    }
    return nullptr;
}

/// The one shut-down, or else the one sleep, of the next minute; no sleep in the minute of a wake-up.
const Occurrence* Scheduler::nextPower() const {
    if (!_next.empty() && _pauses.cover(_next.front().due)) return nullptr;
    if (const Occurrence* shutDown = firstOf(ActionKind::kShutDown)) return shutDown;
    return firstOf(ActionKind::kWakeUp) ? nullptr : firstOf(ActionKind::kSleep);
}

/// What is due up to then, and the sleep or shut-down that comes into course by now.
void Scheduler::takeUp(Instant upTo) {
    while (!_next.empty() && _next.front().due <= upTo) {
        if (_clock.isLate(_next.front().due)) {
            takeUpMissed(std::min(upTo, _clock.lateUpTo()));
        } else {
            takeUpMinute();
        }
        planAnew();
    }
    const Occurrence* power = upTo < now() ? nullptr : nextPower();
    if (power && courseFrom(*power->schedule, power->due) <= now() && !find(*power))
        beginCourse(open(*power, power->due));
}

/// Wake-ups, then actions in list order, then one shut-down or else one sleep.
void Scheduler::takeUpMinute() {
    _watermark = _next.front().due;
    const Occurrence* power = nextPower();
    const bool wakes = firstOf(ActionKind::kWakeUp) != nullptr;
    // What is known is well on its way, or ended before its minute.
    std::vector<Occurrence> others;
    std::ranges::remove_copy_if(_next, std::back_inserter(others), [&](const Occurrence& one) { return find(one); });
    for (const Occurrence& one : others) {
        if (isPaused(one.due)) {
            countPaused(one.due);
        } else if (one.schedule->isPower() && one.due < _clock.bootInstant()) {
            reportMissed(one, 1);
        } else if (!one.schedule->isPower() || (power && one.isSameAs(*power))) {
            run(open(one, one.due));
        } else {
            const bool sleeps = one.schedule->kind == ActionKind::kSleep;
            finish(open(one, one.due), wakes && sleeps ? outcome::kWakesThen : outcome::kSameMinute);
        }
    }
}

/// Everything that is too late to run: one entry a Schedule.
void Scheduler::takeUpMissed(Instant upTo) {
    struct Missed {
        Occurrence last;
        std::optional<Instant> beforeLast;
        std::int64_t count = 0;
    };
    std::map<const ScheduleReading*, Missed> all;
    const Instant from = std::max(_watermark, now() - rules::kLongestAbsence);
    _watermark = upTo;
    _agenda->visit(from, _watermark, [&](const Occurrence& one) {
        if (find(one)) return;
        if (_pauses.cover(one.due)) return _pauses.count(one.due);
        Missed& missed = all[one.schedule.get()];
        const bool later = missed.count == 0 || one.due > missed.last.due;
        const Occurrence& earlier = later ? missed.last : one;
        if (missed.count > 0) missed.beforeLast = std::max(missed.beforeLast.value_or(earlier.due), earlier.due);
        if (later) missed.last = one;
        ++missed.count;
    });

    std::vector<Missed> sorted;
    for (const auto& [schedule, missed] : all) sorted.push_back(missed);
    std::stable_sort(sorted.begin(), sorted.end(), [](const Missed& a, const Missed& b) {
        return std::tie(a.last.due, a.last.schedule->action) < std::tie(b.last.due, b.last.schedule->action);
    });
    for (Missed& missed : sorted) {
        const ScheduleReading& schedule = *missed.last.schedule;
        const bool staysAwake = schedule.kind == ActionKind::kStayAwake && endOf(missed.last) > now();
        if (staysAwake || isWorthwhile(missed.last)) {
            OpenOccurrence& late = open(missed.last, missed.last.due);
            staysAwake ? stayAwake(late) : makeUp(late, rules::kBeforeMakeUp);
            missed.last.due = missed.beforeLast.value_or(0);
            --missed.count;
        }
        if (missed.count > 0) reportMissed(missed.last, missed.count);
        const bool wakes = schedule.kind == ActionKind::kWakeUp;
        if (wakes) happen({.event = Event::kWakeUpComes, .at = missed.last.due});
    }
}

void Scheduler::reportMissed(const Occurrence& last, std::int64_t count) {
    tell(outcome::kMissed, &last, {{keys::kCount, count}, {keys::kCause, causeOf(last.due)}});
}

std::string_view Scheduler::causeOf(Instant due) const {
    return due < _clock.bootInstant() ? outcome::kCauseOff : _lateness;
}

/// So near that a sleep before it would be none.
bool Scheduler::isWakeUpNear() const {
    const Instant end = now() + rules::kSoonAwake - 1;
    bool isNear = std::ranges::any_of(_open, [&](const OpenOccurrence& open) {
        const bool wakes = open.occurrence.schedule->kind == ActionKind::kWakeUp;
        return wakes && open.step == Step::kPostponed && open.at <= end && !_pauses.cover(open.at);
    });
    _agenda->visit(std::max(_watermark, now()), end, [&](const Occurrence& one) {
        isNear = isNear || (one.schedule->kind == ActionKind::kWakeUp && !find(one) && !_pauses.cover(one.due));
    });
    return isNear;
}

void Scheduler::arm() {
    // A list that waits to be taken over already has the computer woken and started, should it sleep or be off first.
    std::optional<Agenda> saved;
    if (_saved) saved.emplace(_world.calendar, readScheduleList(*_saved, _world.actions, _denied).schedules);
    const Agenda& agenda = saved ? *saved : *_agenda;
    const std::optional<Instant> wake =
        earliest(agenda, &ScheduleReading::wakes, [&](const ScheduleReading& schedule, Instant at) {
            const Seconds early = schedule.kind == ActionKind::kModule ? rules::kWakeEarly : 0;
            return std::max(at - early, now() + rules::kNearestAlarm);
        });
    const std::optional<Instant> startup =
        earliest(agenda, &ScheduleReading::starts, [&](const ScheduleReading&, Instant at) {
            return at - rules::kStartEarly > now() ? at - rules::kStartEarly : at;
        });
    _wakefulness.arm(wake, startup);
}

std::optional<Instant> Scheduler::earliest(const Agenda& agenda, bool ScheduleReading::*flag,
                                           const std::function<Instant(const ScheduleReading&, Instant)>& alarm) const {
    std::optional<Instant> best;
    const auto consider = [&](const ScheduleReading& schedule, Instant at) {
        if (at <= now()) return;
        const Instant wanted = alarm(schedule, at);
        best = std::min(best.value_or(wanted), wanted);
    };
    for (const OpenOccurrence& open : _open) {
        const ScheduleReading& schedule = *open.occurrence.schedule;
        const bool stays = agenda.scheduleOf(schedule.digest, open.occurrence.weekday) != nullptr;
        if (stays && rowOf(open.step).armsAlarms && !_pauses.cover(open.at) && schedule.*flag)
            consider(schedule, open.at);
    }
    const auto wanted = [&](const ScheduleReading& schedule) { return schedule.*flag; };
    std::optional<Instant> minute;
    for (const Occurrence& one : coming(agenda, std::max(_watermark, now()), 1 + _open.size(), wanted, true)) {
        if (find(one)) continue;
        if (minute && one.due > *minute) break;
        minute = one.due;
        consider(*one.schedule, one.due);
    }
    return best;
}

std::vector<Upcoming> Scheduler::upcoming(std::size_t most, Instant from) const {
    std::vector<Upcoming> result;
    for (const OpenOccurrence& open : _open) {
        const Occurrence& one = open.occurrence;
        const bool stays = open.step == Step::kStayingAwake;
        const bool goesOn = open.course || open.step == Step::kRunning;
        const Instant at = open.course ? open.course->at() : stays ? one.due : open.at;
        const bool isPaused = !goesOn && _pauses.cover(stays ? now() : open.at);
        if (open.step == Step::kDone || isPaused || at < from) continue;
        const Hold hold = open.step == Step::kWaiting && open.course ? open.course->hold() : Hold{};
        result.push_back({open.token(), one.due, at, one.schedule, open.step, stays ? open.at : 0, open.by, hold});
    }
    for (const Occurrence& one : coming(*_agenda, std::max({_watermark, now(), from - 1}), most + _open.size())) {
        if (!find(one)) result.push_back({one.token(), one.due, one.due, one.schedule, Step::kPlanned, 0, {}, {}});
    }
    std::stable_sort(result.begin(), result.end(), [](const Upcoming& a, const Upcoming& b) { return a.at < b.at; });
    if (result.size() > most) result.resize(most);
    return result;
}

}  // namespace quorel
