#include "scheduler/PowerCourse.h"

#include <algorithm>

#include "model/PlainText.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

/// A graphical session is as idle as its agent says; without an agent, or without graphics, as logind says. Graphics
/// that were started at a text log-in are a text session to logind, and what is typed into them is not: where the agent
/// says less, that counts. Nothing where neither can tell: a desktop that keeps no hint looks to logind like one in
/// use.
std::optional<Seconds> idleOf(const Session& session) {
    const std::optional<Seconds> agent = session.agentIdle, hint = session.hintIdle;
    if (session.isGraphical) return agent ? agent : hint == 0 ? std::nullopt : hint;
    return agent && hint ? std::min(agent, hint) : hint;
}

}  // namespace

Hold holdOf(const Conditions& conditions, Seconds idle, const std::string& running) {
    if (conditions.failure) return {outcome::kHoldUnknown, {}, plainText(*conditions.failure)};
    if (!conditions.scheduledShutdown.empty()) {
        return {outcome::kHoldShutdown, plainText(conditions.scheduledShutdown), {}};
    }
    // Use comes before inhibitors: a film takes both, and the patience with use is the longer one.
    if (idle > 0) {
        for (const Session& session : conditions.sessions) {
            const auto told = idleOf(session);
            if (told.value_or(0) < idle)  // where nobody can tell it is in use
                return {outcome::kHoldUse, plainText(session.name), std::string(told ? "" : outcome::kUntold)};
        }
        if (conditions.sessions.empty() && conditions.sinceLastSession < idle) return {outcome::kHoldUse, {}, {}};
    }
    if (!running.empty()) return {outcome::kHoldAction, plainText(running), {}};
    if (!conditions.inhibitors.empty()) {
        const Inhibitor& first = conditions.inhibitors.front();
        return {outcome::kHoldInhibitor, plainText(first.who), plainText(first.why)};
    }
    return {};
}

bool wasUsed(const Conditions& conditions, Seconds recently) {
    return std::ranges::any_of(conditions.sessions, [recently](const Session& session) {
        const auto told = idleOf(session);
        return told && *told < recently;
    });
}

PowerCourse::Move PowerCourse::begin(Instant now) {
    _refusals = 0;
    return look(now, _quiet ? Step::kChecking : Step::kLooking);
}

PowerCourse::Move PowerCourse::look(Instant now, Step step) {
    _step = step;
    _asked = true;
    _next = now + rules::kLongestLook;
    return {Do::kLook};
}

PowerCourse::Move PowerCourse::reached(Instant now) {
    if (_unwrittenSince != 0 && now - _unwrittenSince > rules::kGrace)
        return {Do::kEnd, outcome::kRefused, {{keys::kReason, outcome::kUnwritten}}};
    if (_step == Step::kActing) return failed(now, std::string(outcome::kNoAnswer));
    if (_asked) return conditionsRead(now, {outcome::kHoldUnknown, {}, std::string(outcome::kNoAnswer)});
    return look(now, _step == Step::kWaiting ? Step::kWaiting : Step::kChecking);
}

PowerCourse::Move PowerCourse::conditionsRead(Instant now, const Hold& hold) {
    if (!_asked) return {};
    _asked = false;
    if (hold) return wait(now, hold);
    _hold = {};
    if (_step == Step::kChecking) {
        _step = Step::kActing;
        _next = now + (_writesMemory ? rules::kLongestWriting : rules::kLongestCall);
        return {Do::kAct};
    }
    _step = Step::kWarned;
    _next = std::max(_at, now + rules::kWarning);
    return {};
}

bool PowerCourse::hasPatience(Instant now) const {
    if (now - _waited.since >= rules::kPatienceWithUse) return false;
    return _waited.byUse || now - _waited.heldSince < rules::kPatience;
}

PowerCourse::Move PowerCourse::wait(Instant now, const Hold& hold) {
    const Instant counted = std::max(now, _at);
    const bool byUse = hold.kind == outcome::kHoldUse;
    if (_quiet) return {Do::kEnd};
    if (_waited.since == 0) _waited = {counted, counted, byUse};
    if (byUse != _waited.byUse) _waited = {_waited.since, counted, byUse};
    _hold = hold;
    if (!hasPatience(now)) return giveUp(now);
    _refusals = 0;
    _unwrittenSince = 0;
    _step = Step::kWaiting;
    _next = now + rules::kBetweenLooks;
    return {};
}

PowerCourse::Move PowerCourse::giveUp(Instant now) const {
    if (!_hold) return {Do::kEnd, outcome::kOvertaken, {{keys::kBy, outcome::kNext}}};
    const Seconds waited = std::max<Seconds>(now - _waited.since, 0);
    return {Do::kEnd,
            outcome::kGaveUp,
            {{keys::kHold, _hold.kind},
             {keys::kWho, _hold.who},
             {keys::kWhy, _hold.why},
             {keys::kMinutes, waited / kMinute}}};
}

PowerCourse::Move PowerCourse::replied(Instant now, PowerReply reply, const std::string& reason) {
    if (_step != Step::kActing) return {};
    if (reply == PowerReply::kRefused) return failed(now, reason);
    if (reply == PowerReply::kUnderWay) return {Do::kEnd, outcome::kOvertaken, {{keys::kBy, outcome::kOther}}};
    _next = now + (_writesMemory ? rules::kLongestWriting : rules::kLongestParting);
    return {};
}

PowerCourse::Move PowerCourse::stayedAwake(Instant now) {
    return failed(now, std::string(outcome::kStayedAwake));
}

void PowerCourse::unwritten(Instant now) {
    if (_unwrittenSince == 0) _unwrittenSince = now;
    _step = Step::kChecking;
    _next = now + rules::kBetweenAttempts;
}

PowerCourse::Move PowerCourse::failed(Instant now, const std::string& reason) {
    if (_quiet || ++_refusals == rules::kMostRefusals) {
        return {Do::kEnd, outcome::kRefused, {{keys::kReason, plainText(reason)}}};
    }
    return look(now, Step::kChecking);
}

PowerCourse::Move PowerCourse::used(Instant now, const std::string& who) {
    if (_step != Step::kWarned || _idle == 0) return {};
    return wait(now, {outcome::kHoldUse, plainText(who), {}});
}

void PowerCourse::clockMoved(Instant before, Seconds by) {
    if (_at <= before) _at += by;  // it has been reached, and is not to come again
    _next = _step == Step::kWarned ? std::max(_at, _next + by) : _next + by;
    for (Instant* const since : {&_waited.since, &_waited.heldSince, &_unwrittenSince})
        if (*since != 0) *since += by;
}

}  // namespace quorel
