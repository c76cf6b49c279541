#include "linux/login/LoginPower.h"

#include <algorithm>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/login/SleepKinds.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

// logind answers when it has begun, which others may delay.
constexpr std::chrono::seconds kRequestPatience{rules::kLongestCall};
constexpr std::chrono::seconds kWritingPatience{rules::kLongestWriting};

// Makes it look at the locks of others although root asks. It overlooks root's own.
constexpr std::uint64_t kRootChecksInhibitors = 1;

}  // namespace

LoginPower::LoginPower(EventLoop& loop, sd_bus* bus, const Clocks& clocks, LoginSessions& sessions, Answers answers)
    : _bus(bus),
      _clocks(clocks),
      _sessions(sessions),
      _answers(std::move(answers)),
      _idleLock(bus, "idle", "block"),
      _lidHold(loop, bus, _answers.lidSeen) {}

void LoginPower::readConditions(Ticket ticket, bool idle) {
    const auto answered = [this, ticket, idle](Conditions conditions, const std::vector<unsigned>& userIds) {
        const auto look = _looks.extract(ticket);
        const auto done = [this, ticket](const Conditions& complete) { _answers.conditionsRead(ticket, complete); };
        if (!idle || conditions.failure) return done(conditions);
        _answers.findIdle(std::move(conditions), userIds, done);
    };
    _looks[ticket] = std::make_unique<LoginConditions>(_bus, _clocks, _sessions, answered);
}

void LoginPower::suspend(Ticket ticket, SleepKind kind) {
    const auto calls = std::ranges::find(kSleepCalls, kind, &SleepCalls::kind);
    request(ticket, calls->call, kind == SleepKind::kSuspend ? kRequestPatience : kWritingPatience);
}

void LoginPower::shutDown(Ticket ticket, bool restart) {
    request(ticket, restart ? "RebootWithFlags" : "PowerOffWithFlags", kRequestPatience);
}

void LoginPower::request(Ticket ticket, const char* member, std::chrono::seconds patience) {
    const auto replied = [this, ticket](sd_bus_message* reply) {
        const auto request = std::move(_request);
        const BusError error = errorOf(reply);
        const PowerReply meaning = !error                            ? PowerReply::kAccepted
                                   : error.name == logind::kUnderWay ? PowerReply::kUnderWay
                                                                     : PowerReply::kRefused;
        _answers.powerReplied(ticket, meaning, error.message);
    };
    _request = logind::call(_bus, patience, logind::kManager, member, replied, "t", kRootChecksInhibitors);
}

void LoginPower::keepAwake(bool keep) {
    _answers.keptAwake(keep);
    if (!keep) return _idleLock.release();
    _idleLock.take("A Schedule keeps this computer awake.", [](const BusError& error) {
        MOLLog("A desktop may let the computer fall asleep again: %s", error.message.c_str());
    });
}

}  // namespace quorel
