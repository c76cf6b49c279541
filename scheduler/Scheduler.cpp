// The events, from their coming in to the effects that go out. What an event does to what is open is in
// SchedulerEvents.cpp, what is planned in SchedulerPlan.cpp, what is open in SchedulerOpen.cpp, pauses in
// SchedulerPauses.cpp, what is stored in SchedulerState.cpp.
#include "scheduler/Scheduler.h"

#include <algorithm>
#include <utility>

#include "model/PlainText.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace keys = wire::keys;

Scheduler::Scheduler(const World& world)
    : _world(world),
      _wakefulness(world.power, world.alarms,
                   {[this](std::function<void()> effect) { act(std::move(effect)); },
                    [this](std::string_view code) { tell(code, nullptr); }, [this] { return ++_lastTicket; },
                    [this] { return isWakeUpNear(); }, [this](Instant upTo) { return _pauses.lastFree(upTo); }}) {}

void Scheduler::process(ClockReading now, std::function<void()> event) {
    _inbox.emplace_back(now, std::move(event));
    if (_working) return;
    _working = true;
    while (!_inbox.empty()) {
        const auto [moment, taken] = std::move(_inbox.front());
        _inbox.pop_front();
        observe(moment);
        taken();
        settle();
        commit();
    }
    _working = false;
}

void Scheduler::observe(ClockReading now) {
    const std::optional<WallClock::Change> change = _clock.observe(now, _former ? _former->watermark : _watermark);
    _wakefulness.observe(now);
    if (_clock.wasSet()) _wakefulness.rewriteAlarms();  // the hardware's clock has not moved
    if (!change) return;
    _changed = true;
    _lateness = outcome::kCauseClock;
    _wakefulness.clockSet(change->by);
    happen({.event = change->event, .by = change->by});
    if (change->event != Event::kClockWasAhead && change->event != Event::kClockCorrected) return;
    tell(outcome::kCorrection, nullptr, {{keys::kBy, change->by}});
    _agenda->visit(this->now(), _watermark, [&](const Occurrence& one) {
        if (!find(one)) _pauses.count(one.due, -1);  // it comes again
    });
    _watermark = this->now();
    planAnew();
}

void Scheduler::settle() {
    // Nothing is acted upon between two minds: what was due meanwhile is looked at when the computer is back.
    if (!_clock.isTrusted() || _wakefulness.isBetween()) return;
    if (!_hasBegun) begin();
    if (_wakefulness.isAnnounced()) {
        afterSleep({});
    } else if (_wakefulness.hasSlept()) {  // without a word before
        happen({Event::kGoesToSleep});
        afterSleep({});
    }
    pauseOpen();
    takeUp(plannedUpTo());
    if (_outlivesList) withdraw();
    reachAll();
    pauseOpen();  // what the system has refused, to be tried again
    if (_saved || _zoneChanged) {
        takeOverSaved();
        takeUp(now());
    }
    endPauses();
    const auto isRunning = [](const OpenOccurrence& open) {
        return open.step == Step::kRunning && open.occurrence.schedule->wakes;
    };
    _wakefulness.settle(
        std::ranges::any_of(_open, isRunning),
        std::ranges::find(_open, Step::kStayingAwake, &OpenOccurrence::step) != _open.end() && !_pauses.cover(now()));
    _clock.settled();
    _lateness = outcome::kCauseLate;
}

/// With what was stored, once the clock is to be trusted.
void Scheduler::begin() {
    _hasBegun = _changed = true;
    _lateness = outcome::kCauseDaemon;
    _wakefulness.rewriteAlarms();
    if (!_former) {
        _watermark = now();
    } else if (_clock.isBehind()) {
        happen({Event::kClockCorrected});
        tell(outcome::kCorrection, nullptr, {{keys::kBy, 0}});
        _watermark = now();
    } else {
        _wakefulness.restore(_former->awakeUntil);
    }
    _pauses.clockTrusted(now());
    withdraw();
    happen({Event::kServiceStarts});
    _former.reset();
    planAnew();
}

void Scheduler::commit() {
    // Where the clock is behind the alarms that stand are left.
    if ((_changed || _wakefulness.mustRewrite()) && !isClockBehind()) arm();
    const bool written = !_changed || _world.store.save(state().value());
    if (_changed) act([this] { _world.reports.changed(); });
    _changed = !written;
    for (OpenOccurrence& open : _open)
        if (std::exchange(open.begins, false) && !written) unwritten(open);
    for (const Effect& effect : std::exchange(_effects, {}))
        if (written || !effect.mustBeWritten) effect.run();
}

/// It begins with this effect.
void Scheduler::actAsWritten(OpenOccurrence& open, std::function<void()> effect) {
    open.begins = _changed = true;
    _effects.push_back({std::move(effect), true});
}

/// What cannot be written as begun is not begun, and tried again.
void Scheduler::unwritten(OpenOccurrence& open) {
    if (open.course) {
        open.course->unwritten(now());
        open.step = open.course->step();
        return;
    }
    if (open.unwrittenSince == 0) open.unwrittenSince = now();
    queue(open);
}

void Scheduler::start(ClockReading now, const Value& list, const Value& stored, const std::string& bootId) {
    _former = StoredState::from(stored);
    _clock.start(now, _former ? _former->watermark : now.instant());
    _wakefulness.start(now);
    _bootId = bootId;
    process(now, [this, list, isLost = !_former && stored.isPresent()] {
        takeList(list);
        _watermark = this->now();
        if (_former) restore(*_former);
        if (isLost) tell(outcome::kStateLost, nullptr);
        if (!_clock.isTrusted() && _clock.isBehind())
            tell(outcome::kClockBehind, nullptr, {{keys::kBy, _clock.behindBy()}});
        planAnew();
    });
}

void Scheduler::listSaved(ClockReading now, const Value& list) {
    process(now, [this, list] {
        if (!_saved) _savedAt = _clock.read().boot;  // from then on nobody has the list of before
        _saved = list;
        _changed = true;
    });
}

void Scheduler::zoneChanged(ClockReading now) {
    process(now, [this] { _zoneChanged = true; });
}

/// By the list and the zone of before: a list counts from when it was saved, a zone from now on.
Instant Scheduler::plannedUpTo() const {
    return _saved ? now() - (_clock.read().boot - _savedAt) / 1000 : now();
}

/// What was due before has been seen to.
void Scheduler::takeOverSaved() {
    _watermark = std::max(_watermark, _zoneChanged ? now() : plannedUpTo());
    if (std::exchange(_zoneChanged, false)) _world.calendar.refresh();
    if (_saved) {
        takeList(*std::exchange(_saved, std::nullopt));
        withdraw();
    }
    planAnew();
}

void Scheduler::tick(ClockReading now) {
    process(now, [] {});
}

void Scheduler::goingToSleep(ClockReading now, Lid lid) {
    process(now, [this, lid] {
        const bool mayWriteMemory = std::ranges::any_of(
            _open, [](const OpenOccurrence& open) { return open.step == Step::kActing && open.writesMemory(); });
        _wakefulness.announced(lid, mayWriteMemory);
        happen({Event::kGoesToSleep});
    });
}

void Scheduler::resumed(ClockReading now, Lid lid) {
    process(now, [this, lid] { afterSleep(lid); });
}

void Scheduler::afterSleep(std::optional<Lid> lid) {
    const bool slept = _wakefulness.hasSlept();
    if (slept) _lateness = outcome::kCauseAsleep;
    _changed = true;
    if (_wakefulness.over(lid)) openWokenFor(), happen({Event::kWokenInBag});
    happen({slept ? Event::kAwakeAgain : Event::kStayedAwake});
}

void Scheduler::lidSeen(ClockReading now, Lid lid) {
    process(now, [this, lid] { _wakefulness.lidSeen(lid); });
}

void Scheduler::goingDown(ClockReading now) {
    process(now, [this] {
        _wakefulness.rewriteAlarms();
        happen({Event::kGoesDown});
    });
}

void Scheduler::used(ClockReading now, const std::string& who) {
    process(now, [this, who] {
        _wakefulness.used();
        happen({.event = Event::kInput, .who = who});
    });
}

void Scheduler::agentCame(ClockReading now) {
    process(now, [this] { happen({Event::kAgentComes}); });
}

void Scheduler::sleepKindsDenied(ClockReading now, const DeniedKinds& denied) {
    process(now, [this, denied] {
        if (denied == std::exchange(_denied, denied)) return;
        takeList(Value(_list));
        planAnew();
    });
}

void Scheduler::conditionsRead(ClockReading now, Ticket ticket, const Conditions& conditions) {
    process(now, [this, ticket, conditions] {
        const std::string running = runningAction();
        if (_wakefulness.conditionsRead(ticket, conditions, running)) return;
        OpenOccurrence* const open = asking(ticket);
        if (!open) return;
        follow(*open,
               open->course->conditionsRead(this->now(), holdOf(conditions, open->occurrence.schedule->idle, running)));
    });
}

void Scheduler::powerReplied(ClockReading now, Ticket ticket, PowerReply reply, const std::string& reason) {
    process(now, [this, ticket, reply, reason] {
        _wakefulness.powerReplied(ticket, reply, reason);
        if (OpenOccurrence* open = asking(ticket)) follow(*open, open->course->replied(this->now(), reply, reason));
    });
}

void Scheduler::tell(std::string_view code, const Occurrence* occurrence, Dictionary arguments) {
    Outcome outcome{std::string(code), now(), 0, {}, std::move(arguments)};
    if (occurrence) {
        outcome.due = occurrence->due;
        outcome.action = plainText(occurrence->schedule->action);
    }
    keepOutcome(_outcomes, outcome.value());
    _changed = true;
    act([this, outcome = std::move(outcome)] { _world.reports.ended(outcome); });
}

std::optional<Instant> Scheduler::nextCall() const {
    if (!_clock.isTrusted()) return _clock.nextQuestion();
    std::optional<Instant> earliest = _wakefulness.nextCall();
    const auto consider = [&](std::optional<Instant> at) {
        if (at) earliest = std::min(earliest.value_or(*at), *at);
    };
    if (!_wakefulness.isBetween()) {
        if (!_next.empty()) consider(_next.front().due);
        const Occurrence* power = nextPower();
        if (power && !find(*power)) consider(courseFrom(*power->schedule, power->due));
        for (const OpenOccurrence& open : _open) consider(nextOf(open));
        consider(_pauses.next(now(), _clock.youngUntil()));
    }
    if (earliest) earliest = std::max(*earliest, now() + 1);
    return earliest;
}

}  // namespace quorel
