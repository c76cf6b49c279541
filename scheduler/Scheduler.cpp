// The events, the clocks, and sleep. What is planned is in SchedulerPlan.cpp, what is open in SchedulerOpen.cpp, what
// is stored in SchedulerState.cpp.
#include "scheduler/Scheduler.h"

#include <algorithm>
#include <cstdlib>

#include "model/PlainText.h"
#include "scheduler/Rules.h"

namespace quorel {

Scheduler::Scheduler(const World& world) : _world(world) {}

void Scheduler::take(Now now, std::function<void()> event) {
    _inbox.emplace_back(now, std::move(event));
    if (_working) return;
    _working = true;
    while (!_inbox.empty()) {
        const auto [moment, taken] = std::move(_inbox.front());
        _inbox.pop_front();
        observeClocks(moment);
        taken();
        settle();
        commit();
    }
    _working = false;
}

void Scheduler::commit() {
    if (_changed || _rewrite) arm();
    if (_changed) {
        _world.store.save(state().value());
        act([this] { _world.reports.changed(); });
    }
    _changed = _rewrite = false;
    for (const auto& effect : std::exchange(_effects, {})) effect();
}

void Scheduler::settle() {
    if (_dormant && _now.boot < *_dormant) return;
    if (_dormant) correct(0);
    // Nothing is acted upon between two minds: what was due meanwhile is looked at when the computer is back.
    if (_goingToSleep && _now.awake - *_goingToSleep < rules::kLongestSilence * 1000) return;
    if (_goingToSleep) afterSleep(_lidClosed);
    if (_now.asleep() - _sleptSeen >= rules::kLeastSleep) afterSleep(false);

    takeUp();
    reachAll();
    if (_backAt != 0 && now() >= _backAt) {
        _backAt = 0;
        _back.emplace(now(), 0, true);
        moveBack(_back->begin(now()));
    } else if (_back && _back->next() <= now()) {
        moveBack(_back->reached(now()));
    }
    if (_wakeIsStone && _wakeAlarm && now() >= *_wakeAlarm) _rewrite = true;
    if (_awakeUntil <= now()) _awakeUntil = 0;
    if (const bool keep = _awakeUntil != 0; keep != _keepsAwake) {
        _keepsAwake = keep;
        act([this, keep] { _world.power.keepAwake(keep); });
    }
    _setBy = 0;
    _slept = _starting = false;
}

void Scheduler::start(Now now, const Value& list, const Value& stored, const std::string& bootId) {
    _now = now;
    _offset = now.wall - now.boot;
    _sleptSeen = now.asleep();
    _bootId = bootId;
    _starting = true;
    take(now, [this, list, stored] {
        takeList(list);
        const std::optional<StoredState> state = StoredState::from(stored);
        _watermark = state ? state->watermark : this->now();
        _changed = _rewrite = true;
        if (!state && stored.isPresent()) tell(outcome::kStateLost, nullptr);
        if (state) {
            if (_watermark - this->now() >= rules::kCorrection) {
                _dormant = _now.boot + rules::kLongestDormancy * 1000;
                tell(outcome::kClockBehind, nullptr, {{"By", _watermark - this->now()}});
            }
            restore(*state);
        }
        planAnew();
    });
}

void Scheduler::listSaved(Now now, const Value& list) {
    take(now, [this, list] {
        settle();
        takeList(list);
        withdraw();
        _watermark = std::max(_watermark, this->now());
        planAnew();
    });
}

void Scheduler::zoneChanged(Now now) {
    take(now, [this] {
        settle();
        _world.calendar.refresh();
        _watermark = std::max(_watermark, this->now());
        planAnew();
    });
}

void Scheduler::tick(Now now) {
    take(now, [] {});
}

void Scheduler::observeClocks(Now now) {
    _slept = _slept || now.asleep() - _now.asleep() >= rules::kLeastSleep;
    _now = now;
    const std::int64_t moved = now.wall - now.boot - _offset;
    if (std::abs(moved) < rules::kLeastSet) return;
    _offset += moved;
    clockSet((moved + (moved < 0 ? -rules::kLeastSet : rules::kLeastSet)) / 1000);
}

void Scheduler::clockSet(Seconds by) {
    _rewrite = _changed = true;
    _setBy = by;
    if (_dormant || std::abs(by) >= rules::kCorrection) return correct(by);
    if (_awakeUntil != 0) _awakeUntil += by;
    if (_backAt != 0) _backAt += by;
    if (_back) _back->clockMoved(now() - by, by);
    _wokenAt += by;
    moveOpen(by);
}

void Scheduler::correct(Seconds by) {
    _dormant.reset();
    endOpen(by);
    if (_awakeUntil != 0) _awakeUntil += by;
    if (_back) _back->clockMoved(now() - by, by);
    _backAt = 0;
    _wokenAt += by;
    tell(outcome::kCorrection, nullptr, {{"By", by}});
    _watermark = now();
    planAnew();
}

void Scheduler::goingToSleep(Now now, bool lidClosed) {
    take(now, [this, lidClosed] {
        _goingToSleep = _now.awake;
        _lidClosed = lidClosed;
        _rewrite = true;
        _backAt = 0;
        if (_back && _back->step() != Step::kActing) _back.reset();
        endCourses(outcome::kSleep);
    });
}

void Scheduler::resumed(Now now, bool lidClosed) {
    take(now, [this, lidClosed] { afterSleep(lidClosed); });
}

void Scheduler::goingDown(Now now) {
    take(now, [this] {
        _rewrite = true;
        endCourses(outcome::kDown);
    });
}

void Scheduler::afterSleep(bool lidClosed) {
    const bool slept = _now.asleep() - _sleptSeen >= rules::kLeastSleep;
    const bool byAlarm =
        slept && _wakeAlarm && now() >= *_wakeAlarm - rules::kAlarmEarly && now() <= *_wakeAlarm + rules::kAlarmLate;
    _sleptSeen = _now.asleep();
    _goingToSleep.reset();
    _rewrite = _changed = true;
    awakeCourses(slept);
    if (_back) moveBack(_back->awake(now(), slept));
    if (!byAlarm) return;
    if (lidClosed) reportLid();
    if (lidClosed || _wakeIsStone) {
        _backAt = now() + rules::kBeforeBack;
    } else {
        _wokenAt = now();
    }
}

void Scheduler::moveBack(const PowerCourse::Move& move) {
    using Do = PowerCourse::Do;
    if (move.what == Do::kLook || move.what == Do::kAct) _backTicket = ++_lastTicket;
    const Ticket ticket = _backTicket;
    if (move.what == Do::kLook) act([this, ticket] { _world.power.look(ticket, true); });
    if (move.what == Do::kAct) {
        tell(outcome::kBackToSleep, nullptr);
        act([this, ticket] { _world.power.suspend(ticket); });
    }
    if (move.what == Do::kEnd) _back.reset();
}

void Scheduler::used(Now now, const std::string& who) {
    take(now, [this, who] {
        _backAt = 0;
        if (_back && _back->step() != Step::kActing) _back.reset();
        for (auto each = _open.begin(); each != _open.end();) {
            OpenOccurrence& open = *each++;
            if (open.course) move(open, open.course->used(this->now(), who));
        }
        arrived();
    });
}

void Scheduler::agentCame(Now now) {
    take(now, [this] { arrived(); });
}

void Scheduler::looked(Now now, Ticket ticket, const Conditions& conditions) {
    take(now, [this, ticket, conditions] {
        const std::string running = runningAction();
        if (OpenOccurrence* open = asking(ticket)) {
            const Hold hold = holdOf(conditions, open->occurrence.schedule->idle, running);
            move(*open, open->course->looked(this->now(), hold));
        } else if (_back && ticket == _backTicket) {
            if (wasUsed(conditions, rules::kUsedSince)) return _back.reset();
            moveBack(_back->looked(this->now(), holdOf(conditions, 0, running)));
        }
    });
}

void Scheduler::powerReplied(Now now, Ticket ticket, PowerReply reply, const std::string& reason) {
    take(now, [this, ticket, reply, reason] {
        if (OpenOccurrence* open = asking(ticket)) {
            move(*open, open->course->replied(this->now(), reply, reason));
        } else if (_back && ticket == _backTicket) {
            const PowerCourse::Move move = _back->replied(this->now(), reply, reason);
            if (move.what == PowerCourse::Do::kEnd) _back.reset();
        }
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

}  // namespace quorel
