// What is open: the steps of an occurrence, skipping and postponing.
#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "model/PlainText.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

/// Whether the token is one that the occurrence has had when it was postponed.
bool isOfPostponement(std::string_view token, const std::string& own) {
    if (!token.starts_with(own + "-")) return false;
    const std::string_view at = token.substr(own.size() + 1);
    return at.size() < 20 && std::ranges::all_of(at, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string OpenOccurrence::token() const {
    const bool isTimeOfIts = step != Step::kRunning && step != Step::kQueued && step != Step::kStayingAwake;
    const bool hasMoved = at != occurrence.due && isTimeOfIts;
    return hasMoved ? occurrence.token() + "-" + std::to_string(at) : occurrence.token();
}

OpenOccurrence& Scheduler::open(const Occurrence& occurrence, Instant at) {
    _changed = true;
    return _open.emplace_back(OpenOccurrence{.occurrence = occurrence, .at = at});
}

const OpenOccurrence* Scheduler::find(const Occurrence& occurrence) const {
    const auto found =
        std::ranges::find_if(_open, [&](const OpenOccurrence& open) { return open.occurrence.isSameAs(occurrence); });
    return found == _open.end() ? nullptr : &*found;
}

OpenOccurrence* Scheduler::asking(Ticket ticket) {
    for (OpenOccurrence& open : _open) {
        if (open.course && open.ticket == ticket) return &open;
    }
    return nullptr;
}

void Scheduler::remove(const OpenOccurrence& open) {
    _changed = true;
    _open.remove_if([&](const OpenOccurrence& one) { return &one == &open; });
}

/// The outcome. What ended before its minute is remembered up to then, and soon after a boot for longer, in case the
/// clock is ahead, so that it is not taken up again.
void Scheduler::finish(OpenOccurrence& open, std::string_view code, Dictionary arguments) {
    tell(code, &open.occurrence, std::move(arguments));
    close(open, code != outcome::kMissed);
}

void Scheduler::close(OpenOccurrence& open, bool isToStay) {
    const bool mayBeAhead = isToStay && now() < _clock.youngUntil();
    if (open.occurrence.due <= _watermark && !mayBeAhead) return remove(open);
    open.step = Step::kDone;
    open.course.reset();
    _changed = true;
}

std::optional<Instant> Scheduler::nextOf(const OpenOccurrence& open) const {
    const Occurrence& one = open.occurrence;
    switch (rowOf(open.step).next) {
        case NextCall::kAtItsMinute:
            return open.step == Step::kDone ? std::max(one.due, _clock.youngUntil()) : one.due;
        case NextCall::kInTime:
            return courseFrom(*one.schedule, open.at);
        case NextCall::kAtItsTime:
            return open.at;
        case NextCall::kInCourse:
            return open.course->next();
        case NextCall::kNever:
            break;
    }
    return std::nullopt;
}

void Scheduler::reachAll() {
    for (auto each = _open.begin(); each != _open.end();) {
        const std::optional<Instant> next = nextOf(*each);
        if (next && *next <= now()) {
            befall(*each, {Event::kTimeComes});
            each = _open.begin();  // others may have ended with it
        } else {
            ++each;
        }
    }
}

void Scheduler::missed(OpenOccurrence& open) {
    const Occurrence& one = open.occurrence;
    if (_pauses.cover(open.at)) return paused(open);
    if (one.schedule->kind == ActionKind::kStayAwake && endOf(one) > now()) return stayAwake(open);
    if (!open.madeUp && isWorthwhile(one)) return makeUp(open, rules::kBeforeMakeUp);
    finish(open, outcome::kMissed, {{keys::kCount, 1}, {keys::kCause, causeOf(open.at)}});
}

/// Though it has been missed.
bool Scheduler::isWorthwhile(const Occurrence& one) const {
    return one.schedule->makeUp > 0 && now() - one.due <= one.schedule->makeUp;
}

void Scheduler::makeUp(OpenOccurrence& open, Seconds after) {
    open.step = Step::kMakeUp;
    open.at = now() + after;
    open.madeUp = _changed = true;
}

/// Its time has come.
void Scheduler::run(OpenOccurrence& open) {
    _changed = true;
    const ActionKind kind = open.occurrence.schedule->kind;
    if (kind == ActionKind::kModule) return runAction(open);
    if (kind == ActionKind::kWakeUp) return wakeUp(open);
    if (kind == ActionKind::kStayAwake) return stayAwake(open);
    beginCourse(open);
}

/// Made up ones run one after the other, and of all a few dozen at once.
void Scheduler::runAction(OpenOccurrence& open) {
    const auto isRunning = [](const OpenOccurrence& other) { return other.step == Step::kRunning; };
    const auto isMadeUp = [&](const OpenOccurrence& other) { return isRunning(other) && other.madeUp; };
    const bool mustWait = open.madeUp && std::ranges::any_of(_open, isMadeUp);
    if (mustWait || std::ranges::count_if(_open, isRunning) >= rules::kMostRunning) return queue(open);
    if (open.unwrittenSince != 0 && now() - open.unwrittenSince > rules::kGrace)
        return finish(open, outcome::kNotStarted, {{keys::kReason, outcome::kUnwritten}});
    open.step = Step::kRunning;
    open.at = now();
    actAsWritten(open, [this, one = open.occurrence, madeUp = open.madeUp] { _world.actions.start(one, madeUp); });
}

void Scheduler::queue(OpenOccurrence& open) {
    open.step = Step::kQueued;
    open.at = now() + rules::kBetweenAttempts;
}

void Scheduler::wakeUp(OpenOccurrence& open) {
    const Occurrence& one = open.occurrence;
    happen({.event = Event::kWakeUpComes, .at = open.at, .newcomer = &open});
    _wakefulness.keepAwake();
    const bool started = one.schedule->starts && one.due - _clock.bootInstant() < rules::kStartedFor;
    finish(open, _wakefulness.wasWoken() ? outcome::kWokeUp : started ? outcome::kStarted : outcome::kAwakeAlready);
}

/// On the wall clock, as it is now, of the day on which it is due, or of the next. A trial begins at any time of day.
Instant Scheduler::endOf(const Occurrence& one) const {
    const ScheduleReading& schedule = *one.schedule;
    const LocalDate date = _world.calendar.dateOf(one.due);
    const auto endOn = [&](LocalDate day) {
        return _world.calendar.instantOf(day, schedule.until / 60, schedule.until % 60).value_or(one.due + kDay);
    };
    const bool isNextDay =
        schedule.isTrial ? endOn(date) <= one.due : schedule.until <= schedule.hour * 60 + schedule.minute;
    return endOn(isNextDay ? date + std::chrono::days(1) : date);
}

/// However late: while time is left it holds for that.
void Scheduler::stayAwake(OpenOccurrence& open) {
    const Instant end = endOf(open.occurrence);
    if (end <= now()) return missed(open);
    open.step = Step::kStayingAwake;
    open.at = end;
    _changed = true;
}

void Scheduler::letSleep(OpenOccurrence& open, const std::string& by) {
    Dictionary arguments{{wire::keys::kUntil, std::min(open.at, now())}};
    if (!by.empty()) arguments.set(wire::keys::kBy, plainText(by));
    finish(open, outcome::kKeptAwake, std::move(arguments));
}

/// The clock was corrected: it is the occurrence within whose time the clock is now, if there is one.
void Scheduler::reckonAnew(OpenOccurrence& open) {
    std::optional<Occurrence> present;
    _agenda->visit(now() - 2 * kDay, now(), [&](const Occurrence& one) {
        if (one.schedule->digest == open.occurrence.schedule->digest && endOf(one) > now()) present = one;
    });
    const OpenOccurrence* known = present ? find(*present) : nullptr;
    if (!present || (known && known != &open)) return letSleep(open, {});
    open.occurrence = *present;
    open.at = endOf(*present);
    _changed = true;
}

void Scheduler::beginCourse(OpenOccurrence& open) {
    if (isDenied(*open.occurrence.schedule))
        return finish(open, outcome::kRefused, {{wire::keys::kReason, outcome::kKindDenied}});
    if (!happen({.event = Event::kPowerComes, .newcomer = &open})) {
        const bool isActing =
            std::ranges::any_of(_open, [](const OpenOccurrence& other) { return other.step == Step::kActing; });
        return finish(open, outcome::kOvertaken, {{keys::kBy, isActing ? outcome::kOther : outcome::kFirst}});
    }
    open.course.emplace(open.at, open.occurrence.schedule->idle);
    if (open.writesMemory()) open.course->writesMemory();
    follow(open, open.course->begin(now()));
}

/// After a start of the service. What waited goes on, unless the computer was off or asleep; a warning begins anew.
void Scheduler::goOn(OpenOccurrence& open) {
    const PowerCourse::Waited& waited = open.course->waited();
    const bool sameBoot = _former->bootId == _bootId;
    const bool slept = _clock.read().asleep() - _former->slept >= rules::kLeastSleep;
    if (!sameBoot && open.at < _clock.bootInstant()) return missed(open);
    if (sameBoot && !slept && waited.since != 0 && open.course->hasPatience(now()))
        return follow(open, open.course->goOn(now()));
    anewOrMissed(open);
}

void Scheduler::anewOrMissed(OpenOccurrence& open) {
    if (_clock.isLate(std::max(open.at, open.course->next()))) return missed(open);
    follow(open, open.course->begin(now()));
}

void Scheduler::follow(OpenOccurrence& open, const PowerCourse::Move& move) {
    using Do = PowerCourse::Do;
    if (move.what == Do::kEnd) return finish(open, move.code, move.arguments);
    if (move.what == Do::kAct && open.isSleep() && isWakeUpNear())
        return this->follow(open, open.course->giveUp(now()));
    if (open.step != open.course->step() || open.waited != open.course->waited()) _changed = true;
    open.step = open.course->step();
    open.waited = open.course->waited();
    if (move.what == Do::kNothing) return;

    const Ticket ticket = open.ticket = ++_lastTicket;
    const ScheduleReading& schedule = *open.occurrence.schedule;
    if (move.what == Do::kLook)
        return act([this, ticket, idle = schedule.idle > 0] { _world.power.readConditions(ticket, idle); });
    actAsWritten(open,
                 [this, ticket, sleeps = open.isSleep(), kind = schedule.sleepKind, restarts = schedule.restarts] {
                     sleeps ? _world.power.suspend(ticket, kind) : _world.power.shutDown(ticket, restarts);
                 });
}

/// What our alarm has woken the computer for.
void Scheduler::openWokenFor() {
    std::vector<Occurrence> found;
    _agenda->visit(std::max(_watermark, now() - rules::kGrace), now() + kMinute, [&](const Occurrence& one) {
        if (one.schedule->wakes && !find(one) && !_pauses.cover(one.due)) found.push_back(one);
    });
    for (const Occurrence& one : found) open(one, one.due);
}

void Scheduler::actionEnded(ClockReading now, const std::string& token, ActionEnd end, int status,
                            const std::string& reason) {
    process(now, [this, token, end, status, reason] {
        const auto running = std::find_if(_open.begin(), _open.end(), [&](const OpenOccurrence& open) {
            return open.step == Step::kRunning && open.occurrence.token() == token;
        });
        if (running == _open.end()) return;
        const Value seconds = std::max<Seconds>(this->now() - running->at, 0);
        const Value text = plainText(reason);
        if (end == ActionEnd::kRan)
            finish(*running, outcome::kRan, {{keys::kSeconds, seconds}, {keys::kMadeUp, running->madeUp}});
        if (end == ActionEnd::kFailed) {
            finish(*running, outcome::kFailed,
                   {{keys::kSeconds, seconds}, {keys::kStatus, status}, {keys::kReason, text}});
        }
        if (end == ActionEnd::kTimedOut) finish(*running, outcome::kTimedOut, {{keys::kSeconds, seconds}});
        if (end == ActionEnd::kNotStarted) notStarted(*running, reason);
        if (end == ActionEnd::kUnknown) finish(*running, outcome::kUnknown);
        for (OpenOccurrence& open : _open)
            if (open.step == Step::kQueued) open.at = this->now();
        // A sleep of the same minute waits for it.
        if (runningAction().empty()) happen({Event::kLastActionEnds});
    });
}

/// Somebody may come while it is still worth it.
void Scheduler::notStarted(OpenOccurrence& open, const std::string& reason) {
    const Occurrence& one = open.occurrence;
    const bool lacksUser = reason == outcome::kNobody || reason == outcome::kNoAgent;
    if (!lacksUser || now() - one.due >= one.schedule->makeUp)
        return finish(open, outcome::kNotStarted, {{keys::kReason, plainText(reason)}});
    open.step = Step::kAwaited;
    open.at = one.due + one.schedule->makeUp;
    open.madeUp = _changed = true;
}

std::string Scheduler::runningAction() const {
    for (const OpenOccurrence& open : _open) {
        if (open.step == Step::kRunning || open.step == Step::kQueued) return open.occurrence.schedule->action;
    }
    return {};
}

/// What the list no longer brings forth ends. What the system is doing goes on, but waits for nothing afterwards.
void Scheduler::withdraw() {
    _outlivesList = false;
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const Occurrence& one = open.occurrence;
        if (one.schedule->isTrial || _agenda->scheduleOf(one.schedule->digest, one.weekday)) continue;
        _outlivesList = true;
        befall(open, {Event::kScheduleGone});
    }
}

const OpenOccurrence* Scheduler::openOne(std::string_view token) const {
    for (const OpenOccurrence& open : _open) {
        const std::string own = open.occurrence.token();
        if (token == own || isOfPostponement(token, own)) return &open;
    }
    return nullptr;
}

std::optional<Occurrence> Scheduler::plannedOne(std::string_view token) const {
    std::optional<Occurrence> found;
    Instant due = 0;
    std::from_chars(token.data(), token.data() + token.size(), due);
    if (due <= std::max(_watermark, now()) || due > now() + rules::kFurthest || _open.size() >= rules::kMostOpen)
        return found;
    _agenda->visit(due - 1, due, [&](const Occurrence& one) {
        if (one.token() == token) found = one;
    });
    return found;
}

/// The open occurrence of that token, opened now if it was only planned and the event is one for such; null when there
/// is none.
OpenOccurrence* Scheduler::named(std::string_view token, Event event) {
    if (const OpenOccurrence* found = openOne(token)) return const_cast<OpenOccurrence*>(found);
    if (fateOf(event, Step::kPlanned) == Fate::kRefused) return nullptr;
    const std::optional<Occurrence> planned = plannedOne(token);
    return planned ? &open(*planned, planned->due) : nullptr;
}

}  // namespace quorel
