// What is planned: taking up what is due, telling what was missed, the alarms, what comes next.
#include <algorithm>
#include <map>
#include <tuple>

#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace {

/// The one shut-down, or else the one sleep, of a minute; no sleep in the minute of a wake-up.
const Occurrence* powerOf(const std::vector<Occurrence>& minute) {
    const auto first = [&](ActionKind kind) -> const Occurrence* {
        for (const Occurrence& one : minute) {
            if (one.schedule->kind == kind) return &one;
        }
        return nullptr;
    };
    if (const Occurrence* shutDown = first(ActionKind::kShutDown)) return shutDown;
    return first(ActionKind::kWakeUp) ? nullptr : first(ActionKind::kSleep);
}

}  // namespace

void Scheduler::takeList(const Value& list) {
    ListReading reading = readScheduleList(list, _world.actions);
    for (const ScheduleFault& fault : reading.faults) {
        if (std::find(_faults.begin(), _faults.end(), fault) != _faults.end()) continue;  // said already
        const auto number = static_cast<std::int64_t>(fault.number);
        Outcome outcome{std::string(outcome::kCannotRun), now(), 0, fault.action, {}};
        outcome.arguments = {{"Number", number}, {"Reason", fault.reason}};
        act([this, outcome] { _world.reports.ended(outcome); });
    }
    _faults = std::move(reading.faults);
    _agenda.emplace(_world.calendar, std::move(reading.schedules));
}

void Scheduler::planAnew() {
    _next = _agenda->after(_watermark, 1, nullptr, true);
    _changed = true;
}

void Scheduler::takeUp() {
    while (!_next.empty() && _next.front().due <= now()) {
        if (now() - _next.front().due > rules::kGrace) {
            takeUpMissed();
        } else {
            takeUpMinute();
        }
        planAnew();
    }
    const Occurrence* power = powerOf(_next);
    if (power && power->due - rules::kWarning <= now() && !find(*power)) beginCourse(open(*power, power->due));
}

/// Wake-ups, then actions in list order, then one shut-down or else one sleep.
void Scheduler::takeUpMinute() {
    _watermark = _next.front().due;
    const Occurrence* power = powerOf(_next);
    const bool wakes = _next.front().schedule->kind == ActionKind::kWakeUp;
    for (const Occurrence& one : _next) {
        if (OpenOccurrence* known = find(one)) {
            // Ended before its minute, or well on its way.
            if (known->step == Step::kSkipped || known->step == Step::kDone) reach(*known);
        } else if (!one.schedule->isPower() || &one == power) {
            run(open(one, one.due));
        } else if (wakes && one.schedule->kind == ActionKind::kSleep) {
            tell(outcome::kWakesThen, &one);
        } else {
            tell(outcome::kSameMinute, &one);
        }
    }
}

/// Everything that is too late to run: one entry a Schedule.
void Scheduler::takeUpMissed() {
    struct Missed {
        Occurrence last;
        std::optional<Instant> beforeLast;
        std::int64_t count = 0;
    };
    std::map<const ScheduleReading*, Missed> all;
    const Instant from = std::max(_watermark, now() - rules::kLongestAbsence);
    _watermark = now() - rules::kGrace - 1;
    _agenda->visit(from, _watermark, [&](const Occurrence& one) {
        if (OpenOccurrence* known = find(one)) {
            if (known->step == Step::kSkipped || known->step == Step::kDone) reach(*known);
            return;
        }
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
        if (now() - missed.last.due <= missed.last.schedule->makeUp) {
            makeUp(open(missed.last, missed.last.due));
            missed.last.due = missed.beforeLast.value_or(0);
            --missed.count;
        }
        if (missed.count > 0) reportMissed(missed.last, missed.count);
    }
}

void Scheduler::makeUp(OpenOccurrence& open) {
    open.step = Step::kMakeUp;
    open.at = now() + rules::kBeforeMakeUp;
    open.madeUp = true;
}

bool Scheduler::isLate(Instant due) const {
    return now() - due > rules::kGrace;
}

void Scheduler::reportMissed(const Occurrence& last, std::int64_t count) {
    tell(outcome::kMissed, &last, {{"Count", count}, {"Cause", causeOf(last.due)}});
}

std::string_view Scheduler::causeOf(Instant due) const {
    if (_starting) return due < bootInstant() ? outcome::kCauseOff : outcome::kCauseDaemon;
    if (_setBy > 0) return outcome::kCauseClock;
    return _slept ? outcome::kCauseAsleep : outcome::kCauseLate;
}

/// Of a computer that sleeps or is off nobody's alarm but ours is known: both are reckoned from the plan alone.
void Scheduler::arm() {
    const bool asleep = _goingToSleep.has_value();
    const std::optional<Instant> wanted = _dormant || (asleep && _lidClosed) ? std::nullopt : wakeWanted();
    const Instant reach = now() + rules::kAlarmReach;
    const bool stone = wanted && *wanted > reach && !_world.alarms.reachFar();
    // A stepping stone stays where it lies until it is reached, or the computer goes to sleep.
    const bool keep = stone && _wakeIsStone && _wakeAlarm && *_wakeAlarm > now() && !_rewrite;
    const std::optional<Instant> wake = keep ? _wakeAlarm : stone ? std::optional(reach) : wanted;
    _wakeIsStone = stone;
    if (wake != _wakeAlarm || _rewrite) act([this, wake] { _world.alarms.armWake(wake); });
    _wakeAlarm = wake;

    const std::optional<Instant> startup = _dormant || asleep ? std::nullopt : startupWanted();
    if (startup != _startupAlarm || _rewrite) act([this, startup] { _world.alarms.armStartup(startup); });
    _startupAlarm = startup;
}

std::optional<Instant> Scheduler::earliest(bool ScheduleReading::*flag,
                                           const std::function<Instant(const ScheduleReading&, Instant)>& alarm) const {
    std::optional<Instant> best;
    const auto consider = [&](const ScheduleReading& schedule, Instant at) {
        if (at <= now()) return;
        const Instant wanted = alarm(schedule, at);
        best = std::min(best.value_or(wanted), wanted);
    };
    for (const OpenOccurrence& open : _open) {
        const bool comes = open.step == Step::kPostponed || open.step == Step::kMakeUp;
        if (comes && (*open.occurrence.schedule).*flag) consider(*open.occurrence.schedule, open.at);
    }
    const auto wanted = [&](const ScheduleReading& schedule) { return schedule.*flag; };
    std::optional<Instant> minute;
    for (const Occurrence& one : _agenda->after(std::max(_watermark, now()), 1 + _open.size(), wanted, true)) {
        if (isOpen(one)) continue;
        if (minute && one.due > *minute) break;
        minute = one.due;
        consider(*one.schedule, one.due);
    }
    return best;
}

std::optional<Instant> Scheduler::wakeWanted() const {
    return earliest(&ScheduleReading::wakes, [&](const ScheduleReading& schedule, Instant at) {
        const Seconds early = schedule.kind == ActionKind::kModule ? rules::kWakeEarly : 0;
        return std::max(at - early, now() + rules::kNearestAlarm);
    });
}

std::optional<Instant> Scheduler::startupWanted() const {
    return earliest(&ScheduleReading::starts, [&](const ScheduleReading&, Instant at) {
        return at - rules::kStartEarly > now() ? at - rules::kStartEarly : at;
    });
}

std::optional<Instant> Scheduler::nextCall() const {
    if (_dormant) return now() + (*_dormant - _now.boot + 999) / 1000;
    if (_goingToSleep)
        return now() + std::max<Seconds>(rules::kLongestSilence - (_now.awake - *_goingToSleep) / 1000, 1);
    std::optional<Instant> earliest;
    const auto consider = [&](std::optional<Instant> at) {
        if (at) earliest = std::min(earliest.value_or(*at), *at);
    };
    if (!_next.empty()) {
        const Occurrence* power = powerOf(_next);
        consider(_next.front().due - (power && !isOpen(*power) ? rules::kWarning : 0));
    }
    for (const OpenOccurrence& open : _open) consider(nextOf(open));
    if (_keepsAwake) consider(_awakeUntil);
    if (_backAt != 0) consider(_backAt);
    if (_back) consider(_back->next());
    if (_wakeIsStone) consider(_wakeAlarm);
    if (earliest) earliest = std::max(*earliest, now() + 1);
    return earliest;
}

std::vector<Upcoming> Scheduler::upcoming(std::size_t most) const {
    std::vector<Upcoming> result;
    for (const OpenOccurrence& open : _open) {
        if (open.step == Step::kDone) continue;
        const Occurrence& one = open.occurrence;
        const Instant at = open.course ? open.course->at() : open.at;
        const Hold hold = open.step == Step::kWaiting && open.course ? open.course->hold() : Hold{};
        result.push_back({open.token(), one.due, at, one.schedule, open.step, open.by, hold});
    }
    for (const Occurrence& one : _agenda->after(std::max(_watermark, now()), most + _open.size())) {
        if (!isOpen(one)) result.push_back({one.token(), one.due, one.due, one.schedule, Step::kPlanned, {}, {}});
    }
    std::stable_sort(result.begin(), result.end(), [](const Upcoming& a, const Upcoming& b) { return a.at < b.at; });
    if (result.size() > most) result.resize(most);
    return result;
}

}  // namespace quorel
