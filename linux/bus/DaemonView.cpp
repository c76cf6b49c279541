#include "linux/bus/DaemonView.h"

#include <exception>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusValues.h"
#include "model/Wire.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 20s;
constexpr auto kPersonsPatience = 10min;
constexpr auto kPause = 300ms;
constexpr auto kRetry = 1min;
constexpr unsigned kMostUpcoming = 20;
constexpr const char* kSaid = "said ";  // before the keys of what people have said
constexpr DaemonView::Interface kScheduler{wire::scheduler::kPath, wire::scheduler::kInterface};

BusConnection connectIfThere(EventLoop& loop) try {
    BusConnection bus = connectTo(Bus::System, loop);
    sd_bus_set_exit_on_disconnect(bus.get(), false);  // these programs have other work, too
    return bus;
} catch (const std::exception& exception) {
    MOLLog("Nothing is shown of what is planned, on the system's bus: %s.", exception.what());
    return {};
}

}  // namespace

bool saysGone(const BusError& error) {
    return error.name == SD_BUS_ERROR_NAME_HAS_NO_OWNER || error.name == SD_BUS_ERROR_SERVICE_UNKNOWN;
}

DaemonView::DaemonView(EventLoop& loop, Needs needs, Callbacks callbacks)
    : _needs(needs),
      _callbacks(std::move(callbacks)),
      _bus(connectIfThere(loop)),
      _pause(loop,
             [this] {
                 if (std::exchange(_again, false)) fetch();
             }),
      _retry(loop, [this] { fetch(); }) {
    _told.isFetched = !_bus;
    if (!_bus) return;
    const auto changed = [this](const std::string& owner) { ownerChanged(!owner.empty()); };
    _watches.push_back(watchOwner(_bus.get(), std::string(kDaemonName), changed));
    watch(kScheduler);
}

void DaemonView::watch(const Interface& interface) {
    if (!_bus) return;
    _watches.push_back(watchSignals(_bus.get(), std::string(kDaemonName),
                                    std::string("member='Changed',interface='") + interface.name + "'",
                                    [this](sd_bus_message*) { fetch(); }));
}

void DaemonView::ownerChanged(bool isThere) {
    // What people have said ends with an error from the bus.
    std::erase_if(_calls, [](const auto& call) { return !call.first.starts_with(kSaid); });
    _missing = 0;
    _told = {.isFetched = !isThere};
    if (_callbacks.ownerChanged) _callbacks.ownerChanged();
    if (!isThere) return _callbacks.changed();
    fetch();
}

void DaemonView::fetch() {
    if (!_bus) return;
    if (_missing > 0 || _pause.isRunning()) {
        _again = true;
        return;
    }
    read(kScheduler, wire::scheduler::kUpcoming, kMostUpcoming, _told.upcoming);
    read(kScheduler, wire::scheduler::kPauses, std::nullopt, _told.pauses);
    read(kScheduler, wire::scheduler::kOutcomes, _needs.outcomes, _told.outcomes);
    if (_needs.status) read(kScheduler, wire::scheduler::kStatus, std::nullopt, _told.status);
    if (_callbacks.alsoRead) _callbacks.alsoRead();
}

void DaemonView::read(const Interface& interface, const char* method, std::optional<unsigned> most, Value& into,
                      std::function<void()> heard) {
    const auto call = newCall(interface, method);
    if (most) sd_bus_message_append(call.get(), "u", *most);
    const bool isSent = send(method, call, kPatience, [this, &into, heard = std::move(heard)](sd_bus_message* reply) {
        const BusError error = errorOf(reply);
        if (!error || saysGone(error)) into = error ? Value() : readValue(reply).value_or(Value());
        if (error && !saysGone(error)) _retry.start(kRetry);
        if (&into == &_told.upcoming) _told.isThere = !error;
        if (heard) heard();
        answered();
    });
    if (isSent) expect();
}

void DaemonView::answered() {
    if (_missing == 0 || --_missing > 0) return;
    _pause.start(kPause);
    _told.isFetched = true;
    _callbacks.changed();
}

BusMessagePointer DaemonView::newCall(const Interface& interface, const char* method) const {
    auto call = quorel::newCall(_bus.get(), kDaemonName.data(), interface.path, interface.name, method);
    if (call) sd_bus_message_set_auto_start(call.get(), false);
    return call;
}

bool DaemonView::send(const std::string& key, const BusMessagePointer& call, std::chrono::seconds limit,
                      std::function<void(sd_bus_message*)> replied) {
    BusSlot slot =
        callAsync(_bus.get(), call.get(), limit, [this, key, replied = std::move(replied)](sd_bus_message* reply) {
            const auto ended = _calls.extract(key);
            replied(reply);
        });
    const bool isSent = slot != nullptr;
    if (isSent) _calls[key] = std::move(slot);
    return isSent;
}

void DaemonView::skip(const std::string& token, Done done) {
    change(wire::scheduler::kSkip, token, {}, std::move(done));
}

void DaemonView::unskip(const std::string& token, Done done) {
    change(wire::scheduler::kUnskip, token, {}, std::move(done));
}

void DaemonView::postpone(const std::string& token, Done done, Seconds length) {
    change(wire::scheduler::kPostponeBy, token, length, std::move(done));
}

void DaemonView::change(const char* method, const std::string& token, std::optional<Seconds> by, Done done) {
    const auto call = newCall(kScheduler, method);
    sd_bus_message_append(call.get(), "s", token.c_str());
    if (by) sd_bus_message_append(call.get(), "x", *by);
    ask(method + token, call, std::move(done));
}

void DaemonView::pause(Done done) {
    const auto call = newCall(kScheduler, wire::scheduler::kPause);
    sd_bus_message_append(call.get(), "xx", Instant(0), Instant(0));
    ask(wire::scheduler::kPause, call, std::move(done));
}

void DaemonView::resume(const std::string& token, Done done) {
    change(wire::scheduler::kResume, token, {}, std::move(done));
}

void DaemonView::ask(const std::string& key, const BusMessagePointer& call, Done done) {
    sd_bus_message_set_allow_interactive_authorization(call.get(), _needs.asksPeople);
    send(std::string(kSaid) + key, call, _needs.asksPeople ? kPersonsPatience : kPatience,
         [this, done = std::move(done)](sd_bus_message* reply) {
             done(errorOf(reply));
             fetch();
         });
}

}  // namespace quorel
