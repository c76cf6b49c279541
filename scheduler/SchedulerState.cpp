// What outlives the program.
#include <algorithm>

#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

StoredState Scheduler::state() const {
    StoredState state{_watermark, _awakeUntil, _bootId, _now.asleep(), {}, _outcomes};
    for (const OpenOccurrence& open : _open) {
        const Occurrence& one = open.occurrence;
        state.open.push_back({one.schedule->action, one.schedule->digest, one.due, open.at, one.weekday, one.number,
                              open.step, open.by, open.madeUp, open.course ? open.course->waitingSince() : 0});
    }
    return state;
}

void Scheduler::restore(const StoredState& state) {
    // Of another clock's time it says nothing.
    if (!_dormant) _awakeUntil = std::min(state.awakeUntil, now() + rules::kKeptAwake);
    _outcomes = state.outcomes;
    const bool undisturbed = state.bootId == _bootId && _now.asleep() - state.slept < rules::kLeastSleep;
    for (const StoredState::Open& stored : state.open) {
        auto schedule = _agenda->scheduleOf(stored.digest, stored.weekday, stored.number);
        const bool known = schedule != nullptr;
        if (!known) {
            ScheduleReading former;
            former.action = stored.action;
            former.digest = stored.digest;
            schedule = std::make_shared<const ScheduleReading>(former);
        }
        const Occurrence one{stored.due, std::move(schedule), stored.weekday, stored.number};
        OpenOccurrence& own = open(one, stored.at);
        own.step = stored.step;
        own.by = stored.by;
        own.madeUp = stored.madeUp;
        if (stored.step == Step::kRunning) {
            act([this, one] { _world.actions.find(one); });
        } else if (stored.step == Step::kActing) {
            finish(own, outcome::kUnknown);  // it may have happened, and is not repeated
        } else if (!known) {
            if (stored.step != Step::kDone) tell(outcome::kWithdrawn, &one);
            remove(own);
        } else if (stored.step >= Step::kLooking && !_dormant) {
            goOn(own, stored.waitingSince, undisturbed);
        }
    }
}

/// What waited goes on, unless the computer was off or asleep; a warning begins anew.
void Scheduler::goOn(OpenOccurrence& open, Instant waitingSince, bool undisturbed) {
    const Seconds idle = open.occurrence.schedule->idle;
    const bool waits =
        waitingSince != 0 && now() - waitingSince <= (idle > 0 ? rules::kPatienceWithUse : rules::kPatience);
    if (isLate(open.at) && !(undisturbed && waits)) return missed(open);
    open.course.emplace(open.at, idle);
    move(open, waitingSince != 0 ? open.course->goOn(now(), waitingSince) : open.course->begin(now()));
}

}  // namespace quorel
