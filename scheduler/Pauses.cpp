#include "scheduler/Pauses.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

Instant morningAfter(Instant instant, const Calendar& calendar) {
    const LocalDate tomorrow = calendar.dateOf(instant) + std::chrono::days(1);
    return calendar.instantOf(tomorrow, rules::kMorning, 0).value_or(instant + kDay);
}

bool areOne(const Pause& one, const Pause& other) {
    const bool doOverlap = other.from < one.until && one.from < other.until;
    return doOverlap && one.by == other.by && one.isBrief == other.isBrief && !other.isEnded;
}

bool isWithin(Instant instant, const Pause& pause) {
    return pause.from <= instant && instant < pause.until;
}

}  // namespace

std::string Pause::token() const {
    return std::to_string(from) + "-" + std::to_string(until) + (isBrief ? "-brief-" : "-") + by;
}

Pause completed(Pause wanted, Instant now, const Calendar& calendar) {
    wanted.from = std::max(wanted.from, now);
    if (wanted.until == 0) wanted.until = morningAfter(std::min(wanted.from, now + rules::kFurthest), calendar);
    wanted.isBrief = wanted.from == now && wanted.until <= morningAfter(now, calendar);
    return wanted;
}

std::string_view faultOf(const Pause& pause, Instant now) {
    if (pause.until <= std::max(pause.from, now)) return wire::pause_fault::kPast;
    return pause.until > now + rules::kFurthest ? wire::pause_fault::kTooFar : std::string_view();
}

Pauses::Answer Pauses::add(Instant now, Pause pause) {
    if (const std::string_view fault = faultOf(pause, now); !fault.empty()) return {{}, fault};
    const auto others = std::ranges::count_if(_pauses, [&](const Pause& other) { return !areOne(pause, other); });
    if (others >= std::ptrdiff_t{rules::kMostPauses}) return {{}, wire::pause_fault::kTooMany};
    pause.from = std::max(pause.from, now);
    for (auto other = _pauses.begin(); other != _pauses.end();) {
        if (!areOne(pause, *other)) {
            ++other;
            continue;
        }
        pause.from = std::min(pause.from, other->from);
        pause.until = std::max(pause.until, other->until);
        pause.count += other->count;
        other = _pauses.erase(other);
    }
    const auto place = std::ranges::upper_bound(_pauses, pause.from, {}, &Pause::from);
    return {*_pauses.insert(place, std::move(pause)), {}};
}

bool Pauses::end(Instant now, const std::string& token, bool onlyBrief) {
    bool found = false;
    for (Pause& one : _pauses) {
        const bool isMeant = (token.empty() || one.token() == token) && (one.isBrief || !onlyBrief);
        if (!isMeant || one.isEnded || one.until <= now) continue;
        one.until = now;
        one.isEnded = found = true;
    }
    return found;
}

void Pauses::clockTrusted(Instant now) {
    for (Pause& one : _pauses)
        if (one.isEnded) one.until = now;
}

std::vector<Pause> Pauses::standing(Instant now) const {
    std::vector<Pause> result;
    std::ranges::copy_if(_pauses, std::back_inserter(result),
                         [&](const Pause& one) { return !one.isEnded && one.until > now; });
    return result;
}

const Pause* Pauses::around(Instant instant) const {
    const auto found = std::ranges::find_if(_pauses, [&](const Pause& one) { return isWithin(instant, one); });
    return found == _pauses.end() ? nullptr : &*found;
}

Instant Pauses::firstFree(Instant instant) const {
    while (const Pause* one = around(instant)) instant = one->until;
    return instant;
}

Instant Pauses::lastFree(Instant instant) const {
    while (const Pause* one = around(instant)) instant = one->from - 1;
    return instant;
}

void Pauses::count(Instant instant, int by) {
    const auto found = std::ranges::find_if(_pauses, [&](const Pause& one) { return isWithin(instant, one); });
    if (found != _pauses.end()) found->count = std::max<std::int64_t>(found->count + by, 0);
}

std::optional<Pause> Pauses::over(Instant now, Instant forgets) {
    const auto found = std::ranges::find_if(
        _pauses, [&](const Pause& one) { return one.isEnded || (one.until <= now && now >= forgets); });
    if (found == _pauses.end()) return {};
    Pause gone = std::move(*found);
    _pauses.erase(found);
    return gone;
}

std::optional<Instant> Pauses::next(Instant now, Instant forgets) const {
    std::optional<Instant> earliest;
    for (const Pause& one : _pauses) {
        const Instant at = one.from > now ? one.from : one.until > now ? one.until : forgets;
        earliest = std::min(earliest.value_or(at), at);
    }
    return earliest;
}

}  // namespace quorel
