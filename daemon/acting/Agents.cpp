#include "daemon/acting/Agents.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string_view>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusValues.h"
#include "model/Wire.h"
#include "scheduler/Outcome.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
namespace names = wire::agents;
using namespace std::chrono_literals;

constexpr std::size_t kMostAgents = 64;
constexpr std::size_t kMostRuns = 32;  // of a user at a time
constexpr auto kPatience = 3s;         // with agents, which measure within a second
constexpr Seconds kJustUsed = 10;      // what agents that watch tell every few seconds
constexpr Seconds kLongestIdle = 366 * kDay;
constexpr Seconds kAfterLimit = kMinute;  // an agent that is alive ends it at the limit by itself

int refuse(sd_bus_error* error, const char* name, const char* text) {
    return sd_bus_error_set(error, name, text);
}

int refuseStranger(sd_bus_error* error) {
    return refuse(error, wire::kNotAuthorized, "The caller is not the agent of its user.");
}

}  // namespace

Agents::Agents(EventLoop& loop, Callers& callers)
    : _loop(loop), _callers(callers), _patience(loop, [this] { answerIdle(); }) {
    static constexpr auto kOpen = SD_BUS_VTABLE_UNPRIVILEGED;
    static constexpr sd_bus_vtable kMembers[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_ARGS(names::kRegister, SD_BUS_NO_ARGS, SD_BUS_NO_RESULT, &Agents::registerAgent, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kWork, SD_BUS_NO_ARGS, SD_BUS_RESULT("a{sv}", work), &Agents::work, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kReportIdle, SD_BUS_ARGS("x", question, "x", seconds), SD_BUS_NO_RESULT,
                                &Agents::reportIdle, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kReportAction, SD_BUS_ARGS("s", token, "s", end, "i", status, "s", reason),
                                SD_BUS_NO_RESULT, &Agents::reportAction, kOpen),
        SD_BUS_SIGNAL_WITH_ARGS(names::kChanged, SD_BUS_NO_ARGS, 0),
        SD_BUS_VTABLE_END};
    _object = addObject(callers.connection(), names::kPath, names::kInterface, kMembers, this);
}

bool Agents::isThere(unsigned user) const {
    return std::ranges::any_of(_agents, [user](const auto& agent) { return agent.second.user == user; });
}

void Agents::hint() {
    sd_bus_emit_signal(_callers.connection(), names::kPath, names::kInterface, names::kChanged, "");
}

// Who they are.

int Agents::registerAgent(sd_bus_message* call, void* self, sd_bus_error*) {
    auto& agents = *static_cast<Agents*>(self);
    const std::string_view name = sd_bus_message_get_sender(call);
    if (agents._agents.contains(name) && !agents._callers.find(name)) return sd_bus_reply_method_return(call, "");
    agents._callers.hold(call, [&agents](HeldCall& held) { agents.registerHeld(held); });
    return 1;
}

void Agents::registerHeld(HeldCall& call) {
    if (isThere(call.user())) return call.refuse(wire::kBusy, "The user has an agent already.");
    if (_agents.size() >= kMostAgents) return call.refuse(wire::kBusy, "There are too many agents.");
    const std::string& name = call.caller();
    Agent& agent = _agents[name];
    agent.user = call.user();
    const auto changed = [this, name](const std::string& owner) {
        if (owner.empty()) left(name);
    };
    agent.leaving = watchOwner(_callers.bus(), name, changed, [this, name](bool done) { registered(name, done); });
}

/// Answered only now: an agent that could leave unnoticed would keep its user's next one out.
void Agents::registered(const std::string& name, bool isWatched) {
    HeldCall* const call = _callers.find(name);
    if (!isWatched) left(name);
    if (call && !isWatched) return call->refuse(wire::kBusy, "The bus does not tell who leaves.");
    if (call) call->accept();
    if (cameCallback) cameCallback();
}

void Agents::left(const std::string& name) {
    const auto agent = _agents.extract(name);
    if (agent.empty()) return;
    const unsigned user = agent.mapped().user;
    std::vector<std::string> lost;
    for (const auto& [token, run] : _runs)
        if (run.user == user) lost.push_back(token);
    for (const std::string& token : lost) end(token, ActionEnd::kUnknown, 0, {});
    if (_unheard.erase(user) > 0 && _unheard.empty()) answerIdle();
}

/// Nothing for a caller that has not registered.
std::optional<unsigned> Agents::userOf(sd_bus_message* call) const {
    const auto agent = _agents.find(std::string_view(sd_bus_message_get_sender(call)));
    return agent == _agents.end() ? std::nullopt : std::optional(agent->second.user);
}

int Agents::work(sd_bus_message* call, void* self, sd_bus_error* error) {
    const auto& agents = *static_cast<Agents*>(self);
    const auto user = agents.userOf(call);
    if (!user) return refuseStranger(error);
    Array actions;
    for (const auto& each : agents._runs)
        if (each.second.user == *user) actions.push_back(each.second.action);
    Dictionary work{{keys::kActions, actions},
                    {keys::kWatch, agents._watches && agents._asked.contains(*user)},
                    {keys::kKeepAwake, agents._keepsAwake}};
    if (agents._unheard.contains(*user)) work.set(keys::kIdle, agents._question);
    return replyDictionary(call, work);
}

// How long nobody has used their sessions.

void Agents::findIdle(const std::vector<unsigned>& users, std::function<void(const Idle&)> answered) {
    _waiting.push_back(std::move(answered));
    if (_patience.isRunning()) return;  // the question under way is fresh enough for two
    ++_question;
    _idle.clear();
    _asked.clear();
    for (const unsigned user : users)
        if (isThere(user)) _asked.insert(user);
    _unheard = _asked;
    if (_unheard.empty()) return answerIdle();
    _patience.start(kPatience);
    hint();
}

void Agents::answerIdle() {
    _patience.stop();
    _unheard.clear();
    for (const auto& answered : std::exchange(_waiting, {})) answered(_idle);
}

void Agents::watchUse(bool watch) {
    if (watch == std::exchange(_watches, watch)) return;
    hint();
}

void Agents::keepAwake(bool keep) {
    if (keep == std::exchange(_keepsAwake, keep)) return;
    hint();
}

int Agents::reportIdle(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& agents = *static_cast<Agents*>(self);
    const auto user = agents.userOf(call);
    if (!user) return refuseStranger(error);
    std::int64_t question = 0;
    std::int64_t seconds = 0;
    sd_bus_message_read(call, "xx", &question, &seconds);
    sd_bus_reply_method_return(call, "");
    if (question == agents._question && agents._unheard.erase(*user) > 0) {
        if (seconds >= 0) agents._idle[*user] = std::min(seconds, kLongestIdle);
        if (agents._unheard.empty()) agents.answerIdle();
    } else if (agents._watches && seconds >= 0 && seconds < kJustUsed && agents._asked.contains(*user)) {
        if (agents.usedCallback) agents.usedCallback(*user);
    }
    return 1;
}

// Their users' actions.

void Agents::run(unsigned user, const std::string& token, Dictionary action, Ended ended) {
    const auto others = std::ranges::count_if(_runs, [user](const auto& run) { return run.second.user == user; });
    if (!isThere(user)) return ended(ActionEnd::kNotStarted, 0, std::string(outcome::kNoAgent));
    if (others >= static_cast<std::ptrdiff_t>(kMostRuns))
        return ended(ActionEnd::kNotStarted, 0, std::string(outcome::kTooMany));
    const std::chrono::seconds limit(Value(action)[keys::kTimeLimit].integer() + kAfterLimit);
    Run& run = _runs[token];
    run = {user, std::move(action), std::move(ended), nullptr};
    run.limit = std::make_unique<LoopTimer>(_loop, [this, token] { end(token, ActionEnd::kUnknown, 0, {}); });
    run.limit->start(limit);
    hint();
}

int Agents::reportAction(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& agents = *static_cast<Agents*>(self);
    const auto user = agents.userOf(call);
    if (!user) return refuseStranger(error);
    const char *token = "", *name = "", *reason = "";
    std::int32_t status = 0;
    sd_bus_message_read(call, "ssis", &token, &name, &status, &reason);
    sd_bus_reply_method_return(call, "");
    const auto run = agents._runs.find(std::string_view(token));
    const auto known = std::ranges::find(kActionEnds, std::string_view(name));
    if (run != agents._runs.end() && run->second.user == *user && known != std::end(kActionEnds))
        agents.end(token, static_cast<ActionEnd>(known - std::begin(kActionEnds)), status, reason);
    return 1;
}

void Agents::end(const std::string& token, ActionEnd end, int status, const std::string& reason) {
    const auto run = _runs.extract(token);
    if (!run.empty()) run.mapped().ended(end, status, reason);
}

}  // namespace quorel
