// Pauses: setting and ending them, and what they leave out.
#include <algorithm>
#include <utility>

#include "model/PlainText.h"
#include "model/Wire.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace keys = wire::keys;

/// It counts in the pause, and is not told by itself.
void Scheduler::paused(OpenOccurrence& open) {
    countPaused(open.at);
    close(open, true);
}

Pauses::Answer Scheduler::pause(ClockReading now, const Pause& wanted) {
    Pauses::Answer answer{{}, wire::pause_fault::kNotNow};
    if (_working) return answer;
    process(now, [&] {
        Pause pause = completed(wanted, this->now(), _world.calendar);
        pause.by = plainText(pause.by);
        answer = _pauses.add(this->now(), std::move(pause));
        _changed = true;
    });
    return answer;
}

bool Scheduler::resume(ClockReading now, Instant from) {
    bool ended = false;
    if (_working) return ended;
    tick(now);  // what was due in it by now counts
    process(now, [&] {
        const std::optional<Pause> pause = _pauses.remove(from);
        ended = pause.has_value();
        if (pause) pauseEnded(*pause, std::min(this->now(), pause->until));
    });
    return ended;
}

void Scheduler::pauseOpen() {
    const bool isPaused = _pauses.around(now()) != nullptr;
    if (isPaused != std::exchange(_wasPaused, isPaused)) _changed = true;
    if (isPaused) happen({Event::kPaused});
}

void Scheduler::endPauses() {
    while (const std::optional<Pause> pause = _pauses.over(now())) pauseEnded(*pause, pause->until);
}

void Scheduler::pauseEnded(const Pause& pause, Instant until) {
    _changed = true;
    happen({Event::kAgentComes});  // perhaps within it
    if (pause.count == 0) return;
    tell(outcome::kPaused, nullptr,
         {{keys::kCount, pause.count}, {keys::kFrom, pause.from}, {keys::kUntil, until}, {keys::kBy, pause.by}});
}

/// What is planned, as Agenda::after has it, but for what a pause leaves out.
std::vector<Occurrence> Scheduler::coming(const Agenda& agenda, std::size_t most, const Agenda::Wanted& wanted,
                                          bool wholeMinutes) const {
    std::vector<Occurrence> result;
    Instant from = std::max(_watermark, now());
    while (result.size() < most) {
        if (const Pause* pause = _pauses.around(from + 1)) from = pause->until - 1;
        const std::vector<Occurrence> some = agenda.after(from, most - result.size(), wanted, wholeMinutes);
        const auto cut = std::ranges::find_if(some, [&](const Occurrence& one) { return _pauses.around(one.due); });
        result.insert(result.end(), some.begin(), cut);
        if (cut == some.end()) break;
        from = cut->due - 1;
    }
    return result;
}

}  // namespace quorel
