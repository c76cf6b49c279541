#include "scheduler/Pauses.h"

#include <algorithm>
#include <cstddef>
#include <functional>

#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

Instant morningAfter(Instant instant, const Calendar& calendar) {
    const LocalDate tomorrow = calendar.dateOf(instant) + std::chrono::days(1);
    return calendar.instantOf(tomorrow, rules::kMorning, 0).value_or(instant + kDay);
}

bool doOverlap(const Pause& one, const Pause& other) {
    return other.from < one.until && one.from < other.until;
}

}  // namespace

Pause completed(Pause wanted, Instant now, const Calendar& calendar) {
    wanted.from = std::max(wanted.from, now);
    if (wanted.until == 0) wanted.until = morningAfter(std::min(wanted.from, now + rules::kFurthest), calendar);
    return wanted;
}

bool isBrief(const Pause& pause, Instant now, const Calendar& calendar) {
    return pause.from <= now && pause.until <= morningAfter(pause.from, calendar);
}

std::string_view Pauses::faultOf(Instant now, const Pause& pause) const {
    if (pause.until <= std::max(pause.from, now)) return wire::pause_fault::kPast;
    if (pause.until > now + rules::kFurthest) return wire::pause_fault::kTooFar;
    const auto meets = [&](const Pause& other) { return doOverlap(pause, other); };
    const auto others = static_cast<std::size_t>(std::ranges::count_if(_pauses, std::not_fn(meets)));
    return others >= rules::kMostPauses ? wire::pause_fault::kTooMany : std::string_view();
}

Pauses::Answer Pauses::add(Instant now, Pause pause) {
    if (const std::string_view fault = faultOf(now, pause); !fault.empty()) return {{}, fault};
    pause.from = std::max(pause.from, now);
    for (auto other = _pauses.begin(); other != _pauses.end();) {
        if (!doOverlap(pause, *other)) {
            ++other;
            continue;
        }
        if (other->from <= pause.from && pause.until <= other->until) pause.by = other->by;  // it stays as it was
        pause.from = std::min(pause.from, other->from);
        pause.until = std::max(pause.until, other->until);
        pause.count += other->count;
        other = _pauses.erase(other);
    }
    const auto place = std::ranges::lower_bound(_pauses, pause.from, {}, &Pause::from);
    return {*_pauses.insert(place, std::move(pause)), {}};
}

std::optional<Pause> Pauses::remove(Instant from) {
    const auto found = std::ranges::find(_pauses, from, &Pause::from);
    if (found == _pauses.end()) return {};
    Pause gone = std::move(*found);
    _pauses.erase(found);
    return gone;
}

const Pause* Pauses::around(Instant instant) const {
    const auto found =
        std::ranges::find_if(_pauses, [&](const Pause& one) { return one.from <= instant && instant < one.until; });
    return found == _pauses.end() ? nullptr : &*found;
}

void Pauses::count(Instant instant) {
    for (Pause& one : _pauses)
        if (one.from <= instant && instant < one.until) ++one.count;
}

std::optional<Pause> Pauses::over(Instant now) {
    if (_pauses.empty() || _pauses.front().until > now) return {};
    return remove(_pauses.front().from);
}

std::optional<Instant> Pauses::next(Instant now) const {
    for (const Pause& one : _pauses)
        if (one.until > now) return one.from > now ? one.from : one.until;
    return std::nullopt;
}

}  // namespace quorel
