#include "qt/host/Plan.h"

#include <exception>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusValues.h"
#include "model/Wire.h"

namespace quorel::qt {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 20s;
constexpr auto kPersonsPatience = 10min;  // polkit may ask for a password
constexpr auto kPause = 300ms;
constexpr unsigned kMostUpcoming = 20;

BusConnection connectIfThere(EventLoop& loop) try {
    BusConnection bus = connectTo(Bus::System, loop);
    sd_bus_set_exit_on_disconnect(bus.get(), false);
    return bus;
} catch (const std::exception& exception) {
    MOLLog("Nothing is shown of what is planned, on the system's bus: %s.", exception.what());
    return {};
}

}  // namespace

Plan::Plan(EventLoop& loop, std::function<void()> changed)
    : _changed(std::move(changed)), _bus(connectIfThere(loop)), _pause(loop, [this] {
          if (std::exchange(_again, false)) fetch();
      }) {
    if (!_bus) return;
    const std::string daemon(kDaemonName);
    _owner = watchOwner(_bus.get(), daemon, [this](const std::string& owner) {
        _told.isThere = !owner.empty();
        fetch();
    });
    _hints = watchSignals(_bus.get(), daemon,
                          std::string("member='Changed',interface='") + wire::scheduler::kInterface + "'",
                          [this](sd_bus_message*) { fetch(); });
    _kinds.emplace(_bus.get(), [this](const DeniedKinds& denied) {
        if (denied != std::exchange(_told.deniedKinds, denied)) _changed();
    });
    _kinds->ask();
    fetch();
}

void Plan::fetch() {
    if (!_bus) return;
    if (_missing > 0 || _pause.isRunning()) {
        _again = true;
        return;
    }
    _missing = 4;
    read(wire::scheduler::kUpcoming, kMostUpcoming, _told.upcoming);
    read(wire::scheduler::kOutcomes, wire::scheduler::kMostOutcomes, _told.outcomes);
    read(wire::scheduler::kStatus, std::nullopt, _told.status);
    read(wire::scheduler::kPauses, std::nullopt, _told.pauses);
}

void Plan::read(const char* method, std::optional<unsigned> most, Value& into) {
    const auto call = newCall(method);
    if (most) sd_bus_message_append(call.get(), "u", *most);
    sd_bus_message_set_auto_start(call.get(), false);
    send(method, call, kPatience, [this, &into](sd_bus_message* reply) {
        const bool answered = !errorOf(reply);
        into = answered ? readValue(reply).value_or(Value()) : Value();
        if (&into == &_told.upcoming) _told.isThere = answered;
        fetched();
    });
}

void Plan::send(const std::string& key, const BusMessagePointer& call, std::chrono::seconds limit,
                std::function<void(sd_bus_message*)> replied) {
    _calls[key] =
        callAsync(_bus.get(), call.get(), limit, [this, key, replied = std::move(replied)](sd_bus_message* reply) {
            const auto ended = _calls.extract(key);
            replied(reply);
        });
    if (_calls[key]) return;
    _calls.erase(key);
}

void Plan::fetched() {
    if (_missing == 0 || --_missing > 0) return;
    _pause.start(kPause);
    _changed();
}

BusMessagePointer Plan::newCall(const char* method) const {
    return quorel::newCall(_bus.get(), kDaemonName.data(), wire::scheduler::kPath, wire::scheduler::kInterface, method);
}

void Plan::change(const char* method, const std::string& token, std::optional<Seconds> by, Done done) {
    const auto call = newCall(method);
    sd_bus_message_append(call.get(), "s", token.c_str());
    if (by) sd_bus_message_append(call.get(), "x", *by);
    ask(method + token, call, std::move(done));
}

void Plan::pause(Done done) {
    const auto call = newCall(wire::scheduler::kPause);
    sd_bus_message_append(call.get(), "xx", Instant(0), Instant(0));
    ask(wire::scheduler::kPause, call, std::move(done));
}

void Plan::resume(Instant from, Done done) {
    const auto call = newCall(wire::scheduler::kResume);
    sd_bus_message_append(call.get(), "x", from);
    ask(wire::scheduler::kResume, call, std::move(done));
}

void Plan::ask(const std::string& key, const BusMessagePointer& call, Done done) {
    if (!call) return;
    sd_bus_message_set_allow_interactive_authorization(call.get(), true);
    send(key, call, kPersonsPatience, [this, done = std::move(done)](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        done(error.name, error.message);
        fetch();
    });
}

}  // namespace quorel::qt
