#include "agent/DaemonLink.h"

#include <utility>

#include "model/Wire.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using namespace std::chrono_literals;

constexpr auto kPatience = 20s;
constexpr auto kRetry = 1min;
constexpr unsigned kMostOutcomes = 8;
constexpr DaemonView::Interface kAgents{wire::agents::kPath, wire::agents::kInterface};

std::string ownName(sd_bus* bus) {
    const char* name = nullptr;
    return bus && sd_bus_get_unique_name(bus, &name) >= 0 ? name : "";
}

}  // namespace

DaemonLink::DaemonLink(EventLoop& loop, Callbacks callbacks)
    : _callbacks(std::move(callbacks)),
      _plan(loop, {.outcomes = kMostOutcomes, .status = false, .asksPeople = false},
            {_callbacks.changed, [this] { alsoRead(); }, [this] { ownerChanged(); }}),
      _name(ownName(_plan.bus())),
      _retry(loop, [this] { _isRegistered ? _plan.fetch() : registerAgent(); }) {
    if (!_plan.bus()) return;
    _plan.watch(kAgents);
    watchLogins(loop);
    registerAgent();
    _plan.fetch();
}

/// Who may skip and postpone, and who is to be warned, depends on whose session is shown, of which the daemon says
/// nothing.
void DaemonLink::watchLogins(EventLoop& loop) {
    sd_login_monitor* monitor = nullptr;
    if (sd_login_monitor_new("uid", &monitor) < 0) return;  // there is no logind
    _logins.reset(monitor);
    _loginSource = whenReadable(loop, sd_login_monitor_get_fd(monitor), [this] {
        sd_login_monitor_flush(_logins.get());
        _plan.fetch();
    });
}

void DaemonLink::ownerChanged() {
    _isRegistered = false;
    _answered = 0;
    _questions.clear();
    _work = Value();
    registerAgent();
}

void DaemonLink::registerAgent() {
    _plan.send("register", _plan.newCall(kAgents, wire::agents::kRegister), kPatience, [this](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        _isRegistered = !error;
        if (error && !saysGone(error)) _retry.start(kRetry);
        if (_isRegistered) _plan.fetch();
    });
}

void DaemonLink::alsoRead() {
    if (_isRegistered)
        _plan.read(kAgents, wire::agents::kWork, std::nullopt, _work, [this] {
            const std::int64_t question = _work[keys::kIdle].integer();
            if (question <= _answered) return;
            _answered = question;  // which does not wait for polkit
            _callbacks.idleAsked(question);
        });
    askPolkit(kSkipAction, _maySkip);
    askPolkit(kPostponeAction, _mayPostpone);
    askPolkit(kPauseAction, _mayPause);
}

void DaemonLink::askPolkit(const char* action, bool& allowed) {
    _questions.erase(action);
    _plan.expect();
    _questions.try_emplace(action, _plan.bus(), _name, action, false,
                           [this, &allowed](const std::optional<PolkitQuestion::Answer>& answer) {
                               allowed = answer && answer->authorized;
                               if (!answer) _retry.start(kRetry);
                               _plan.answered();
                           });
}

void DaemonLink::reportIdle(std::int64_t question, std::optional<Seconds> idle) {
    if (!isThere()) return;
    const auto call = _plan.newCall(kAgents, wire::agents::kReportIdle);
    sd_bus_message_append(call.get(), "xx", question, idle.value_or(-1));
    sd_bus_send(_plan.bus(), call.get(), nullptr);
}

void DaemonLink::reportAction(const std::string& token, const std::string& end, int status, const std::string& reason) {
    if (!isThere()) return;
    const auto call = _plan.newCall(kAgents, wire::agents::kReportAction);
    sd_bus_message_append(call.get(), "ssis", token.c_str(), end.c_str(), status, reason.c_str());
    sd_bus_send(_plan.bus(), call.get(), nullptr);
}

}  // namespace quorel
