// What outlives the program.
#include <algorithm>

#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

StoredState Scheduler::state() const {
    // Until the clock is to be trusted that run counts from which all will go on.
    StoredState state{_watermark, _wakefulness.awakeUntil(), _bootId, _clock.read().asleep(), {}, _pauses.all(),
                      _outcomes};
    if (_former) {
        state.awakeUntil = _former->awakeUntil;
        state.bootId = _former->bootId;
        state.slept = _former->slept;
    }
    for (const OpenOccurrence& open : _open) {
        const Occurrence& one = open.occurrence;
        StoredState::Open& stored = state.open.emplace_back(StoredState::Open{one.schedule->action,
                                                                              one.schedule->digest,
                                                                              one.due,
                                                                              open.at,
                                                                              one.weekday,
                                                                              open.step,
                                                                              open.by,
                                                                              open.madeUp,
                                                                              0,
                                                                              {}});
        if (!open.course) continue;
        stored.next = open.course->next();
        stored.waited = open.course->waited();
    }
    return state;
}

/// As it was left; what becomes of it then, the table says.
void Scheduler::restore(const StoredState& state) {
    _watermark = state.watermark;
    _outcomes = state.outcomes;
    _pauses.restore(state.pauses);
    for (const StoredState::Open& stored : state.open) {
        auto schedule = _agenda->scheduleOf(stored.digest, stored.weekday);
        if (!schedule) {
            ScheduleReading former;
            former.action = stored.action;
            former.digest = stored.digest;
            schedule = std::make_shared<const ScheduleReading>(former);
        }
        const Occurrence one{stored.due, std::move(schedule), stored.weekday};
        if (find(one)) continue;  // an equal one, of a version that ran each
        OpenOccurrence& own = open(one, stored.at);
        own.step = stored.step;
        own.by = stored.by;
        own.madeUp = stored.madeUp;
        if (rowOf(own.step).next != NextCall::kInCourse) continue;
        own.course.emplace(own.at, one.schedule->idle, own.step, stored.next, stored.waited);
        if (own.writesMemory()) own.course->writesMemory();
    }
}

}  // namespace quorel
