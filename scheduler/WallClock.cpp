#include "scheduler/WallClock.h"

#include <algorithm>
#include <cstdlib>

#include "scheduler/Rules.h"

namespace quorel {

void WallClock::start(ClockReading now, Instant watermark) {
    _now = now;
    _offset = now.wall - now.boot;
    _startedAt = now.boot;
    _watermark = watermark;
    _wasBehind = isBehind();
    if (now.synchronised) return;
    if (_wasBehind)
        _doubtUntil = now.boot + rules::kLongestBehind * 1000;
    else if (now.boot < rules::kLongestUnsynchronised * 1000)
        _doubtUntil = rules::kLongestUnsynchronised * 1000;
}

std::optional<WallClock::Change> WallClock::observe(ClockReading now, Instant watermark) {
    _now = now;
    _watermark = watermark;
    const std::int64_t moved = now.wall - now.boot - _offset;
    _wasSet = std::abs(moved) >= rules::kLeastSet;
    if (_wasSet) _offset += moved;
    if (_doubtUntil) {
        if (now.synchronised || now.boot >= *_doubtUntil || (_wasBehind && !isBehind())) {
            _doubtUntil.reset();
            _waited = (now.boot - _startedAt) / 1000;
        }
        return {};
    }
    if (!_wasSet) return {};
    const Seconds by = (moved + (moved < 0 ? -rules::kLeastSet : rules::kLeastSet)) / 1000;
    const bool isYoung = now.boot < rules::kYoung * 1000;
    // Set back more than once, it may be as far behind as by one great step.
    if (std::abs(by) >= rules::kCorrection || (by < 0 && isBehind())) return Change{Event::kClockCorrected, by};
    if (by < -rules::kLeastAhead && isYoung) return Change{Event::kClockWasAhead, by};
    return Change{by < 0 ? Event::kClockSetBack : Event::kClockSetOn, by};
}

bool WallClock::isBehind() const {
    return behindBy() >= rules::kCorrection;
}

Instant WallClock::nextQuestion() const {
    const Seconds left = (*_doubtUntil - _now.boot + 999) / 1000;
    return now() + std::clamp<Seconds>(left, 1, rules::kBetweenQuestions);
}

Instant WallClock::lateUpTo() const {
    return now() - _waited - rules::kGrace - 1;
}

Instant WallClock::youngUntil() const {
    return bootInstant() + rules::kYoung;
}

}  // namespace quorel
