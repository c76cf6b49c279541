// What becomes of what is open: the fates of EventTable.h.
#include <algorithm>

#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace keys = wire::keys;

/// False where the newcomer to a course ends.
bool Scheduler::happen(const Happening& what) {
    bool all = true;
    if (!_hasBegun) return all;
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        if (&open != what.newcomer) all = befall(open, what) && all;
    }
    return all;
}

/// False where the fate is a refusal.
bool Scheduler::befall(OpenOccurrence& open, const Happening& what) {
    const Fate fate = fateOf(what.event, open.step);
    const Occurrence& one = open.occurrence;
    switch (fate) {
        case Fate::kStays:
        case Fate::kAsItsTimeComes:  // which is looked at next
            break;
        case Fate::kRefused:
        case Fate::kNewcomerEnds:
            return false;
        case Fate::kSkipped:
        case Fate::kPostponed:
            setAside(open, what);
            break;
        case Fate::kPlannedAnew:
            if (one.due <= now()) return false;
            remove(open);
            break;
        case Fate::kGivenUpForNext:
            if (one.schedule->idle == 0 && what.newcomer->occurrence.schedule->idle > 0) return false;
            follow(open, open.course->giveUp(now()));
            break;
        case Fate::kPaused:
            open.at > now() ? asBeforeItsCourse(open) : paused(open);
            break;
        case Fate::kWithdrawn:
            tell(outcome::kWithdrawn, &one);
            remove(open);
            break;
        case Fate::kUnknown:
            finish(open, outcome::kUnknown);
            break;
        case Fate::kAskedFor:
            act([this, one] { _world.actions.find(one); });
            break;
        case Fate::kLetsSleep:
            letSleep(open, what.who);
            break;
        case Fate::kReckonedAnew:
            reckonAnew(open);
            break;
        case Fate::kLidClosed:
            if (one.schedule->wakes && open.at <= now() + kMinute) finish(open, outcome::kLidClosed);
            break;
        case Fate::kSecondsGoOn:
        case Fate::kPlannedAgain:
        case Fate::kEndsUnlessAhead:
        case Fate::kCorrected:
            befallByClock(open, fate, what.by);
            break;
        default:
            open.course ? befallInCourse(open, fate, what) : befallInTime(open, fate, what);
    }
    return true;
}

void Scheduler::befallInTime(OpenOccurrence& open, Fate fate, const Happening& what) {
    const Occurrence one = open.occurrence;
    switch (fate) {
        case Fate::kForgotten:
            return remove(open);
        case Fate::kSkippedForGood:
            if (_pauses.cover(open.at)) return paused(open);
            return finish(open, outcome::kSkipped, {{keys::kBy, open.by}});
        case Fate::kRuns:
            if (isPaused(open.at)) return paused(open);
            return _clock.isLate(open.at) ? missed(open) : run(open);
        case Fate::kRunsWhileItMay:
            if (isPaused(open.at)) return paused(open);
            if (open.madeUp && now() - one.due > one.schedule->makeUp + rules::kBeforeMakeUp) return missed(open);
            return run(open);
        case Fate::kSoonWhileItMay:
            if (isWorthwhile(one)) return makeUp(open, rules::kBeforeMakeUp);
            return open.madeUp || _clock.isLate(one.due) ? missed(open) : queue(open);
        case Fate::kNobodyCame:
            if (isPaused(open.at)) return paused(open);
            return finish(open, outcome::kNotStarted, {{keys::kReason, outcome::kNobody}});
        case Fate::kMakeUpSoon:
            if (isPaused(now())) return;
            return makeUp(open, rules::kAfterArrival);
        case Fate::kGivenUpIfSoon:
            if (!open.isSleep() || open.at > what.at + rules::kClearOfSleep) return;
            return finish(open, outcome::kOvertaken, {{keys::kBy, outcome::kNext}});
        case Fate::kMissedIfBeforeBoot:
            if (one.schedule->isPower() && open.at < _clock.bootInstant()) missed(open);
            return;
        default:
            return;
    }
}

void Scheduler::befallInCourse(OpenOccurrence& open, Fate fate, const Happening& what) {
    const Occurrence one = open.occurrence;
    const bool sleeps = open.isSleep();
    switch (fate) {
        case Fate::kNextMove:
            return follow(open, open.course->reached(now()));
        case Fate::kGivenUpForWakeUp: {
            const Instant minute = what.at - what.at % kMinute;
            if (sleeps ? one.due <= what.at : one.due < minute) follow(open, open.course->giveUp(now()));
            return;
        }
        case Fate::kSleepOvertaken:
            if (sleeps) finish(open, outcome::kOvertaken, {{keys::kBy, outcome::kSleep}});
            return;
        case Fate::kShutDownOrOvertaken:
            if (!sleeps) return finish(open, outcome::kShutDown, {{keys::kRestart, one.schedule->restarts}});
            [[fallthrough]];
        case Fate::kOvertakenByDown:
            return finish(open, outcome::kOvertaken, {{keys::kBy, outcome::kDown}});
        case Fate::kSleptOrAnew:
            if (sleeps) return follow(open, open.course->slept(now()));
            [[fallthrough]];
        case Fate::kShutDownAnew:
            return anewOrMissed(open);
        case Fate::kSleepRefused:
            if (sleeps) follow(open, open.course->stayedAwake(now()));
            return;
        case Fate::kGoesOnOrAnew:
            return goOn(open);
        case Fate::kWaitsIfIdle:
            return follow(open, open.course->used(now(), what.who));
        case Fate::kLooksAtOnce:
            if (open.step != Step::kWaiting || open.course->hold().kind != outcome::kHoldAction) return;
            return follow(open, open.course->freed(now()));
        default:
            return;
    }
}

void Scheduler::befallByClock(OpenOccurrence& open, Fate fate, Seconds by) {
    const auto secondsGoOn = [&] {
        if (open.course) open.course->clockMoved(now() - by, by);
        open.at = open.course ? open.course->time() : open.at + by;
        if (open.unwrittenSince != 0) open.unwrittenSince += by;
    };
    switch (fate) {
        case Fate::kSecondsGoOn:
            return secondsGoOn();
        case Fate::kPlannedAgain: {
            const bool wasAhead = open.at > now() - by;
            secondsGoOn();
            if (wasAhead && open.at - now() > rules::kWarning) asBeforeItsCourse(open);
            return;
        }
        case Fate::kEndsUnlessAhead:
            if (open.at > now()) return;
            if (open.step == Step::kSkipped) return finish(open, outcome::kSkipped, {{keys::kBy, open.by}});
            [[fallthrough]];
        case Fate::kCorrected:
            tell(outcome::kClockCorrected, &open.occurrence);
            return remove(open);
        default:
            return;
    }
}

/// Planned, or postponed.
void Scheduler::asBeforeItsCourse(OpenOccurrence& open) {
    if (open.at == open.occurrence.due && open.at > _watermark) return remove(open);
    open.step = Step::kPostponed;
    open.course.reset();
    _changed = true;
}

/// "Not this time", or later.
void Scheduler::setAside(OpenOccurrence& open, const Happening& what) {
    const bool skips = what.event == Event::kSkip;
    const Seconds length = std::clamp(what.by, rules::kLeastPostponement, rules::kMostPostponement);
    open.at = skips ? open.occurrence.due : std::max(open.at, now()) + length;
    open.course.reset();
    open.step = skips ? Step::kSkipped : Step::kPostponed;
    open.by = plainText(what.who);
    _changed = true;
}

bool Scheduler::decide(ClockReading now, const std::string& token, const Happening& what) {
    bool done = false;
    if (_working) return done;
    process(now, [&] {
        OpenOccurrence* const open = named(token, what.event);
        done = open && fateOf(what.event, open->step) != Fate::kRefused;
        // A token from before a postponement asks for that one again.
        if (!done || (what.event == Event::kPostpone && token != open->token())) return;
        done = befall(*open, what);
    });
    return done;
}

bool Scheduler::skip(ClockReading now, const std::string& token, const std::string& by) {
    return decide(now, token, {.event = Event::kSkip, .who = by});
}

bool Scheduler::unskip(ClockReading now, const std::string& token, const std::string& by) {
    return decide(now, token, {.event = Event::kUnskip, .who = by});
}

bool Scheduler::postpone(ClockReading now, const std::string& token, const std::string& by, Seconds length) {
    return decide(now, token, {.event = Event::kPostpone, .by = length, .who = by});
}

Scheduler::Trial Scheduler::tryNow(ClockReading now, const Value& schedule) {
    Trial trial{{}, wire::trial_fault::kNotNow};
    if (_working) return trial;
    process(now, [&] {
        if (_pauses.cover(this->now())) trial.fault = wire::trial_fault::kPaused;
        if (_pauses.cover(this->now()) || !_hasBegun || _wakefulness.isBetween() || _open.size() >= rules::kMostOpen)
            return;
        const ListReading reading =
            readScheduleList(Array{schedule.with(schedule_keys::kIsEnabled, true)}, _world.actions);
        if (!reading.faults.empty()) trial.fault = reading.faults.front().reason;
        if (reading.schedules.empty()) return;
        const Occurrence one{this->now(), asTrial(*reading.schedules.front()), 0};
        if (one.schedule->kind == ActionKind::kWakeUp) trial.fault = wire::trial_fault::kWakeUp;
        if (one.schedule->kind == ActionKind::kWakeUp || find(one)) return;
        trial = {one.token(), {}};
        run(open(one, one.due));
    });
    return trial;
}

bool Scheduler::knows(const std::string& token) const {
    const OpenOccurrence* open = openOne(token);
    return open ? fateOf(Event::kSkip, open->step) != Fate::kRefused : plannedOne(token).has_value();
}

}  // namespace quorel
