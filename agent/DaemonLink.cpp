#include "agent/DaemonLink.h"

#include <exception>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusValues.h"
#include "model/Wire.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using namespace std::chrono_literals;

constexpr auto kPatience = 20s;
constexpr auto kPause = 300ms;
constexpr auto kRetry = 1min;
constexpr std::uint32_t kMostUpcoming = 20;
constexpr std::uint32_t kMostOutcomes = 8;

BusConnection connectIfThere(EventLoop& loop) try {
    BusConnection bus = connectTo(Bus::System, loop);
    sd_bus_set_exit_on_disconnect(bus.get(), false);  // updates are looked for without it, too
    return bus;
} catch (const std::exception& exception) {
    MOLLog("Nothing is shown of what is planned, on the system's bus: %s.", exception.what());
    return {};
}

std::string ownName(sd_bus* bus) {
    const char* name = nullptr;
    return bus && sd_bus_get_unique_name(bus, &name) >= 0 ? name : "";
}

}  // namespace

DaemonLink::DaemonLink(EventLoop& loop, Callbacks callbacks)
    : _callbacks(std::move(callbacks)),
      _bus(connectIfThere(loop)),
      _name(ownName(_bus.get())),
      _pause(loop,
             [this] {
                 if (std::exchange(_again, false)) fetch();
             }),
      _retry(loop, [this] { _isRegistered ? fetch() : registerAgent(); }) {
    if (!_bus) return;
    const std::string daemon(kDaemonName);
    _owner = watchOwner(_bus.get(), daemon, [this](const std::string& owner) { ownerChanged(!owner.empty()); });
    const auto hints = [&](const std::string& member, const std::string& interface) {
        return watchSignals(_bus.get(), daemon, "member='" + member + "',interface='" + interface + "'",
                            [this](sd_bus_message*) { fetch(); });
    };
    _schedulerHints = hints(wire::scheduler::kChanged, wire::scheduler::kInterface);
    _agentHints = hints(wire::agents::kChanged, wire::agents::kInterface);
    watchLogins(loop);
    ownerChanged(true);  // what is sent tells whether that is so
}

/// Who may skip and postpone, and who is to be warned, depends on whose session is shown, of which the daemon says
/// nothing.
void DaemonLink::watchLogins(EventLoop& loop) {
    sd_login_monitor* monitor = nullptr;
    if (sd_login_monitor_new("uid", &monitor) < 0) return;  // there is no logind
    _logins.reset(monitor);
    _loginSource = whenReadable(loop, sd_login_monitor_get_fd(monitor), [this] {
        sd_login_monitor_flush(_logins.get());
        fetch();
    });
}

BusMessagePointer DaemonLink::newCall(const Interface& interface, const char* method) const {
    auto call = quorel::newCall(_bus.get(), kDaemonName.data(), interface.path, interface.name, method);
    if (call) sd_bus_message_set_auto_start(call.get(), false);
    return call;
}

void DaemonLink::send(const std::string& key, const BusMessagePointer& call,
                      std::function<void(sd_bus_message*)> replied) {
    _calls[key] =
        callAsync(_bus.get(), call.get(), kPatience, [this, key, replied = std::move(replied)](sd_bus_message* reply) {
            const auto ended = _calls.extract(key);
            replied(reply);
        });
    if (!_calls[key]) _calls.erase(key);
}

void DaemonLink::ownerChanged(bool isThere) {
    _isThere = isThere;
    _isRegistered = false;
    _missing = 0;
    _answered = 0;
    _calls.clear();
    _questions.clear();
    _upcoming = _pauses = _outcomes = _work = Value();
    if (!isThere) return _callbacks.changed();
    registerAgent();
}

void DaemonLink::registerAgent() {
    if (!_isThere) return;
    send("register", newCall(kAgents, wire::agents::kRegister), [this](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        if (error.name == SD_BUS_ERROR_NAME_HAS_NO_OWNER || error.name == SD_BUS_ERROR_SERVICE_UNKNOWN)
            return ownerChanged(false);
        _isRegistered = !error;
        if (error) _retry.start(kRetry);
        fetch();
    });
}

void DaemonLink::fetch() {
    if (!_isThere) return;
    if (_missing > 0 || _pause.isRunning()) {
        _again = true;
        return;
    }
    _missing = 7;
    read(kScheduler, wire::scheduler::kUpcoming, kMostUpcoming, _upcoming);
    read(kScheduler, wire::scheduler::kPauses, std::nullopt, _pauses);
    read(kScheduler, wire::scheduler::kOutcomes, kMostOutcomes, _outcomes);
    _isRegistered ? read(kAgents, wire::agents::kWork, std::nullopt, _work) : fetched();
    askPolkit(kSkipAction, _maySkip);
    askPolkit(kPostponeAction, _mayPostpone);
    askPolkit(kPauseAction, _mayPause);
}

void DaemonLink::read(const Interface& interface, const char* method, std::optional<std::uint32_t> most, Value& into) {
    const auto call = newCall(interface, method);
    if (most) sd_bus_message_append(call.get(), "u", *most);
    send(method, call, [this, &into](sd_bus_message* reply) {
        if (!errorOf(reply))
            into = readValue(reply).value_or(Value());
        else
            _retry.start(kRetry);
        const std::int64_t question = _work[keys::kIdle].integer();
        if (question > _answered) {  // which does not wait for polkit
            _answered = question;
            _callbacks.idleAsked(question);
        }
        fetched();
    });
}

void DaemonLink::askPolkit(const char* action, bool& allowed) {
    _questions.erase(action);
    _questions.try_emplace(action, _bus.get(), _name, action, false,
                           [this, &allowed](const std::optional<PolkitQuestion::Answer>& answer) {
                               allowed = answer && answer->authorized;
                               if (!answer) _retry.start(kRetry);
                               fetched();
                           });
}

void DaemonLink::fetched() {
    if (_missing == 0 || --_missing > 0) return;
    _pause.start(kPause);
    _callbacks.changed();
}

void DaemonLink::skip(const std::string& token, Refused refused) {
    change(wire::scheduler::kSkip, token, std::move(refused),
           [&](sd_bus_message* call) { sd_bus_message_append(call, "s", token.c_str()); });
}

void DaemonLink::unskip(const std::string& token, Refused refused) {
    change(wire::scheduler::kUnskip, token, std::move(refused),
           [&](sd_bus_message* call) { sd_bus_message_append(call, "s", token.c_str()); });
}

void DaemonLink::postpone(const std::string& token, Refused refused, Seconds length) {
    change(wire::scheduler::kPostponeBy, token, std::move(refused),
           [&](sd_bus_message* call) { sd_bus_message_append(call, "sx", token.c_str(), length); });
}

void DaemonLink::pauseUntilTomorrow(Refused refused) {
    change(wire::scheduler::kPause, {}, std::move(refused),
           [&](sd_bus_message* call) { sd_bus_message_append(call, "xx", std::int64_t{0}, std::int64_t{0}); });
}

void DaemonLink::resume(Instant from, Refused refused) {
    change(wire::scheduler::kResume, {}, std::move(refused),
           [&](sd_bus_message* call) { sd_bus_message_append(call, "x", from); });
}

void DaemonLink::change(const char* method, const std::string& about, Refused refused,
                        const std::function<void(sd_bus_message*)>& append) {
    if (!_isThere) return;
    const auto call = newCall(kScheduler, method);
    append(call.get());
    send(method + about, call, [refused = std::move(refused)](sd_bus_message* reply) {
        if (const BusError error = errorOf(reply)) refused(refusalText(error.name, error.message));
    });
}

void DaemonLink::reportIdle(std::int64_t question, std::optional<Seconds> idle) {
    if (!_isThere) return;
    const auto call = newCall(kAgents, wire::agents::kReportIdle);
    sd_bus_message_append(call.get(), "xx", question, idle.value_or(-1));
    sd_bus_send(_bus.get(), call.get(), nullptr);
}

void DaemonLink::reportAction(const std::string& token, const std::string& end, int status, const std::string& reason) {
    if (!_isThere) return;
    const auto call = newCall(kAgents, wire::agents::kReportAction);
    sd_bus_message_append(call.get(), "ssis", token.c_str(), end.c_str(), status, reason.c_str());
    sd_bus_send(_bus.get(), call.get(), nullptr);
}

}  // namespace quorel
