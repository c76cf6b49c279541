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

bool Scheduler::resume(ClockReading now, const std::string& token, bool onlyBrief) {
    bool ended = false;
    if (_working) return ended;
    process(now, [&] {
        ended = _pauses.end(this->now(), token, onlyBrief);
        _changed = _changed || ended;
    });
    return ended;
}

void Scheduler::pauseOpen() {
    const bool isPaused = _pauses.cover(now());
    const bool wasPaused = std::exchange(_wasPaused, isPaused);
    if (isPaused != wasPaused) _changed = true;
    if (isPaused) happen({Event::kPaused});
    if (!isPaused && wasPaused) happen({Event::kAgentComes});  // perhaps within it
}

/// When what was due in them has been counted; soon after a boot later, in case the clock is ahead.
void Scheduler::endPauses() {
    while (const std::optional<Pause> pause = _pauses.over(now(), _clock.youngUntil())) {
        _changed = true;
        if (pause->count > 0)
            tell(outcome::kPaused, nullptr,
                 {{keys::kCount, pause->count},
                  {keys::kFrom, pause->from},
                  {keys::kUntil, pause->until},
                  {keys::kBy, pause->by}});
    }
}

/// What is planned, as Agenda::after has it, but for what a pause leaves out.
std::vector<Occurrence> Scheduler::coming(const Agenda& agenda, Instant from, std::size_t most,
                                          const Agenda::Wanted& wanted, bool wholeMinutes) const {
    std::vector<Occurrence> result;
    while (result.size() < most) {
        from = _pauses.firstFree(from + 1) - 1;
        const std::vector<Occurrence> some = agenda.after(from, most - result.size(), wanted, wholeMinutes);
        const auto cut = std::ranges::find_if(some, [&](const Occurrence& one) { return _pauses.cover(one.due); });
        result.insert(result.end(), some.begin(), cut);
        if (cut == some.end()) break;
        from = cut->due - 1;
    }
    return result;
}

}  // namespace quorel
