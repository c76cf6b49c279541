// What is open: the steps of an occurrence, skipping and postponing.
#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "model/PlainText.h"
#include "scheduler/Rules.h"
#include "scheduler/Scheduler.h"

namespace quorel {

namespace {

/// Skipping and postponing leave what the system is already doing alone.
bool isUnderWay(Step step) {
    return step == Step::kRunning || step == Step::kActing || step == Step::kDone;
}

/// Whether the token is one that the occurrence has had when it was postponed.
bool isOfPostponement(std::string_view token, const std::string& own) {
    if (!token.starts_with(own + "-")) return false;
    const std::string_view at = token.substr(own.size() + 1);
    return at.size() < 20 && std::ranges::all_of(at, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string OpenOccurrence::token() const {
    return at == occurrence.due || step == Step::kRunning ? occurrence.token()
                                                          : occurrence.token() + "-" + std::to_string(at);
}

OpenOccurrence& Scheduler::open(const Occurrence& occurrence, Instant at) {
    _changed = true;
    return _open.emplace_back(OpenOccurrence{.occurrence = occurrence, .at = at});
}

OpenOccurrence* Scheduler::find(const Occurrence& occurrence) {
    for (OpenOccurrence& open : _open) {
        if (open.occurrence.isSameAs(occurrence)) return &open;
    }
    return nullptr;
}

bool Scheduler::isOpen(const Occurrence& occurrence) const {
    return std::any_of(_open.begin(), _open.end(),
                       [&](const OpenOccurrence& open) { return open.occurrence.isSameAs(occurrence); });
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

/// The outcome. What ended before its minute is remembered up to then, so that it is not taken up again.
void Scheduler::finish(OpenOccurrence& open, std::string_view code, Dictionary arguments) {
    tell(code, &open.occurrence, std::move(arguments));
    if (open.occurrence.due <= _watermark) return remove(open);
    open.step = Step::kDone;
    open.course.reset();
}

std::optional<Instant> Scheduler::nextOf(const OpenOccurrence& open) const {
    if (open.course) return open.course->next();
    if (open.step == Step::kRunning) return std::nullopt;
    if (open.step == Step::kSkipped || open.step == Step::kDone) return open.occurrence.due;
    return open.at - (open.step == Step::kPostponed && open.occurrence.schedule->isPower() ? rules::kWarning : 0);
}

void Scheduler::reachAll() {
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each;
        const std::optional<Instant> next = nextOf(open);
        if (next && *next <= now()) {
            reach(open);
            each = _open.begin();  // others may have ended with it
        } else {
            ++each;
        }
    }
}

void Scheduler::reach(OpenOccurrence& open) {
    const Occurrence& one = open.occurrence;
    if (open.step == Step::kDone) {
        remove(open);
    } else if (open.step == Step::kSkipped) {
        finish(open, outcome::kSkipped, {{"By", open.by}});
    } else if (open.step == Step::kPostponed) {
        isLate(open.at) ? missed(open) : run(open);
    } else if (open.step == Step::kAwaited) {
        finish(open, outcome::kNotStarted, {{"Reason", outcome::kNobody}});
    } else if (open.step == Step::kMakeUp) {
        now() - one.due > one.schedule->makeUp + rules::kBeforeMakeUp ? missed(open) : run(open);
    } else if (_slept && isLate(open.course->next())) {
        missed(open);
    } else {
        move(open, open.course->reached(now()));
    }
}

void Scheduler::missed(OpenOccurrence& open) {
    const Occurrence& one = open.occurrence;
    if (!open.madeUp && now() - one.due <= one.schedule->makeUp) {
        makeUp(open);
        _changed = true;
        return;
    }
    finish(open, outcome::kMissed, {{"Count", 1}, {"Cause", causeOf(open.at)}});
}

/// Its time has come.
void Scheduler::run(OpenOccurrence& open) {
    _changed = true;
    const Occurrence one = open.occurrence;
    if (one.schedule->isPower()) return beginCourse(open);
    if (one.schedule->kind == ActionKind::kWakeUp) {
        wakeUp(one);
        return remove(open);
    }
    open.step = Step::kRunning;
    open.at = now();
    act([this, one, madeUp = open.madeUp] { _world.actions.start(one, madeUp); });
}

void Scheduler::wakeUp(const Occurrence& one) {
    giveUpFor(nullptr);
    _awakeUntil = now() + rules::kKeptAwake;
    const bool woken = std::abs(now() - _wokenAt) <= rules::kGrace;
    const bool started = one.schedule->starts && one.due - bootInstant() < rules::kStartedFor;
    tell(woken ? outcome::kWokeUp : started ? outcome::kStarted : outcome::kAwakeAlready, &one);
}

void Scheduler::beginCourse(OpenOccurrence& open) {
    giveUpFor(&open);
    open.course.emplace(open.at, open.occurrence.schedule->idle);
    move(open, open.course->begin(now()));
}

/// A sleep or shut-down whose time has come ends those before it; a wake-up (null) those that wait.
void Scheduler::giveUpFor(const OpenOccurrence* newcomer) {
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const bool ends = newcomer ? open.step != Step::kActing : open.step == Step::kWaiting;
        if (open.course && &open != newcomer && ends) move(open, open.course->giveUp(now()));
    }
}

void Scheduler::move(OpenOccurrence& open, const PowerCourse::Move& move) {
    if (move.what == PowerCourse::Do::kEnd) return finish(open, move.code, move.arguments);
    if (open.step != open.course->step()) _changed = true;
    open.step = open.course->step();
    if (move.what == PowerCourse::Do::kNothing) return;

    open.ticket = ++_lastTicket;
    const Ticket ticket = open.ticket;
    const ScheduleReading& schedule = *open.occurrence.schedule;
    if (move.what == PowerCourse::Do::kLook) {
        act([this, ticket, idle = schedule.idle > 0] { _world.power.look(ticket, idle); });
        return;
    }
    open.asleepBefore = _now.asleep();
    if (schedule.kind == ActionKind::kSleep) {
        act([this, ticket] { _world.power.suspend(ticket); });
    } else {
        act([this, ticket, restart = schedule.restarts] { _world.power.shutDown(ticket, restart); });
    }
}

/// The computer goes to sleep or down by whatever cause.
void Scheduler::endCourses(std::string_view cause) {
    const bool down = cause == outcome::kDown;
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const ScheduleReading& schedule = *open.occurrence.schedule;
        if (!open.course || (schedule.kind == ActionKind::kShutDown && !down)) continue;
        if (open.step != Step::kActing) {
            finish(open, outcome::kOvertaken, {{"By", cause}});
        } else if (schedule.kind == ActionKind::kShutDown) {
            finish(open, outcome::kShutDown, {{"Restart", schedule.restarts}});
        }
    }
}

void Scheduler::awakeCourses(bool slept) {
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        if (!open.course || open.occurrence.schedule->kind != ActionKind::kSleep) continue;
        if (open.step == Step::kActing) {
            move(open, open.course->awake(now(), _now.asleep() - open.asleepBefore >= rules::kLeastSleep));
        } else if (slept) {  // without a word before
            finish(open, outcome::kOvertaken, {{"By", outcome::kSleep}});
        }
    }
}

/// Our alarm has woken a computer that lies in a bag: nothing of what it was woken for happens.
void Scheduler::reportLid() {
    std::vector<Occurrence> found;
    _agenda->visit(std::max(_watermark, now() - rules::kGrace), now() + kMinute, [&](const Occurrence& one) {
        if (one.schedule->wakes && !isOpen(one)) found.push_back(one);
    });
    for (const Occurrence& one : found) finish(open(one, one.due), outcome::kLidClosed);
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const bool soon = open.at <= now() + kMinute && open.occurrence.schedule->wakes;
        if (soon && (open.step == Step::kPostponed || open.step == Step::kMakeUp)) finish(open, outcome::kLidClosed);
    }
}

void Scheduler::actionEnded(Now now, const std::string& token, ActionEnd end, int status, const std::string& reason) {
    take(now, [this, token, end, status, reason] {
        const auto running = std::find_if(_open.begin(), _open.end(), [&](const OpenOccurrence& open) {
            return open.step == Step::kRunning && open.occurrence.token() == token;
        });
        if (running == _open.end()) return;
        const Value seconds = std::max<Seconds>(this->now() - running->at, 0);
        const Value text = plainText(reason);
        if (end == ActionEnd::kRan)
            finish(*running, outcome::kRan, {{"Seconds", seconds}, {"MadeUp", running->madeUp}});
        if (end == ActionEnd::kFailed) {
            finish(*running, outcome::kFailed, {{"Seconds", seconds}, {"Status", status}, {"Reason", text}});
        }
        if (end == ActionEnd::kTimedOut) finish(*running, outcome::kTimedOut, {{"Seconds", seconds}});
        if (end == ActionEnd::kNotStarted) notStarted(*running, reason);
        if (end == ActionEnd::kUnknown) finish(*running, outcome::kUnknown);
        // A sleep of the same minute waits for the last action to end.
        for (OpenOccurrence& open : _open) {
            const bool waits = open.course && open.course->hold().kind == outcome::kHoldAction;
            if (waits && open.step == Step::kWaiting) move(open, open.course->freed(this->now()));
        }
    });
}

/// Somebody may come while it is still worth it.
void Scheduler::notStarted(OpenOccurrence& open, const std::string& reason) {
    const Occurrence& one = open.occurrence;
    const bool lacksUser = reason == outcome::kNobody || reason == outcome::kNoAgent;
    if (!lacksUser || now() - one.due >= one.schedule->makeUp)
        return finish(open, outcome::kNotStarted, {{"Reason", plainText(reason)}});
    open.step = Step::kAwaited;
    open.at = one.due + one.schedule->makeUp;
    open.madeUp = _changed = true;
}

void Scheduler::arrived() {
    for (OpenOccurrence& open : _open) {
        if (open.step != Step::kAwaited) continue;
        open.step = Step::kMakeUp;
        open.at = now() + rules::kAfterArrival;
        _changed = true;
    }
}

std::string Scheduler::runningAction() const {
    for (const OpenOccurrence& open : _open) {
        if (open.step == Step::kRunning) return open.occurrence.schedule->action;
    }
    return {};
}

/// A list was taken over: what its Schedules no longer bring forth ends. What the system is doing goes on.
void Scheduler::withdraw() {
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const Occurrence& one = open.occurrence;
        if (open.step == Step::kRunning || open.step == Step::kActing) continue;
        if (_agenda->scheduleOf(one.schedule->digest, one.weekday, one.number)) continue;
        if (open.step != Step::kDone) tell(outcome::kWithdrawn, &one);
        remove(open);
    }
}

/// The clock was set by less than a correction. What is measured in seconds goes on as it was; what has a time keeps
/// it, and may find itself earlier or later.
void Scheduler::moveOpen(Seconds by) {
    const Instant before = now() - by;
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        const bool ahead = open.course && open.course->isAhead(before);
        if (open.course) open.course->clockMoved(before, by);
        if (open.step == Step::kMakeUp || open.step == Step::kRunning) open.at += by;
        if (!ahead || open.step == Step::kActing) continue;
        const bool isPlanned = open.at == open.occurrence.due && open.at > _watermark;
        if (isLate(open.at)) {
            missed(open);
        } else if (open.at - now() > rules::kWarning && isPlanned) {
            remove(open);  // and taken up again in its time
        } else if (open.at - now() > rules::kWarning) {
            open.step = Step::kPostponed;
            open.course.reset();
        }
    }
}

/// The clock was corrected.
void Scheduler::endOpen(Seconds by) {
    for (auto each = _open.begin(); each != _open.end();) {
        OpenOccurrence& open = *each++;
        if (open.step == Step::kRunning) open.at += by;
        if (open.course) open.course->clockMoved(now() - by, by);
        if (open.step == Step::kRunning || open.step == Step::kActing) continue;
        if (open.step != Step::kDone) tell(outcome::kClockCorrected, &open.occurrence);
        remove(open);
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

/// The open occurrence of that token, opened now if it was only planned; null when there is none.
OpenOccurrence* Scheduler::named(std::string_view token) {
    if (const OpenOccurrence* found = openOne(token)) return const_cast<OpenOccurrence*>(found);
    const std::optional<Occurrence> planned = plannedOne(token);
    return planned ? &open(*planned, planned->due) : nullptr;
}

bool Scheduler::knows(const std::string& token) const {
    const OpenOccurrence* open = openOne(token);
    return open ? !isUnderWay(open->step) : plannedOne(token).has_value();
}

bool Scheduler::skip(Now now, const std::string& token, const std::string& by) {
    bool done = false;
    if (_working) return done;
    take(now, [&] {
        OpenOccurrence* open = named(token);
        done = open && !isUnderWay(open->step);
        if (!done || open->step == Step::kSkipped) return;
        open->course.reset();
        open->step = Step::kSkipped;
        open->at = open->occurrence.due;
        open->by = plainText(by);
        _changed = true;
        if (open->occurrence.due <= _watermark) reach(*open);
    });
    return done;
}

bool Scheduler::postpone(Now now, const std::string& token, const std::string& by) {
    bool done = false;
    if (_working) return done;
    take(now, [&] {
        OpenOccurrence* open = named(token);
        done = open && !isUnderWay(open->step) && open->step != Step::kSkipped && open->step != Step::kAwaited;
        if (!done || token != open->token()) return;  // a token from before a postponement asks for that one again
        open->course.reset();
        open->step = Step::kPostponed;
        open->at = std::max(open->at, this->now()) + rules::kPostponement;
        open->by = plainText(by);
        _changed = true;
    });
    return done;
}

}  // namespace quorel
