#include "linux/login/LoginConditions.h"

#include <unistd.h>

#include <cstdint>
#include <string_view>
#include <utility>

#include "linux/login/Logind.h"

namespace quorel {

namespace {

/// Whether a list of words with colons between them has one of two.
bool concernsSleep(std::string_view what) {
    for (;;) {
        const auto colon = what.find(':');
        const auto word = what.substr(0, colon);
        if (word == "sleep" || word == "shutdown") return true;
        if (colon == std::string_view::npos) return false;
        what.remove_prefix(colon + 1);
    }
}

constexpr const char* kOtherAnswer = "logind answers in another way than expected";
constexpr std::size_t kMostInhibitors = 64;  // more would say no more

}  // namespace

LoginConditions::LoginConditions(sd_bus* bus, const Clocks& clocks, const LoginSessions& sessions, Answered answered)
    : _bus(bus), _clocks(clocks), _watch(sessions), _answered(std::move(answered)) {
    using Read = void (LoginConditions::*)(sd_bus_message*);
    const auto then = [this](const char* name, Read read) {
        return [this, name, read](sd_bus_message* reply) {
            const auto call = _calls.extract(name);
            if (const BusError error = errorOf(reply)) return fail(error.message);
            (this->*read)(reply);
        };
    };
    _calls["inhibitors"] = logind::call(_bus, logind::kPatience, logind::kManager, "ListInhibitors",
                                        then("inhibitors", &LoginConditions::readInhibitors), "");
    _calls["shutdown"] = logind::call(_bus, logind::kPatience, logind::kManagerProperties, "Get",
                                      then("shutdown", &LoginConditions::readShutdown), "ss",
                                      logind::kManager.interface, "ScheduledShutdown");
    _calls["sessions"] = logind::call(_bus, logind::kPatience, logind::kManager, "ListSessions",
                                      then("sessions", &LoginConditions::readSessions), "");
}

// logind itself overlooks root's locks when root asks for sleep, and so do the "weak" ones of newer versions: here
// every lock counts, whoever holds it. Our own, for running actions, the scheduler knows of, and sooner.
void LoginConditions::readInhibitors(sd_bus_message* reply) {
    if (sd_bus_message_enter_container(reply, 'a', "(ssssuu)") < 0) return fail(kOtherAnswer);
    const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
    std::uint32_t process = 0;
    while (sd_bus_message_read(reply, "(ssssuu)", &what, &who, &why, &mode, nullptr, &process) > 0)
        if (std::string_view(mode).starts_with("block") && concernsSleep(what) &&
            process != static_cast<std::uint32_t>(getpid()) && _conditions.inhibitors.size() < kMostInhibitors)
            _conditions.inhibitors.push_back({who, why});
    finishIfComplete();
}

// Going to sleep would cancel it.
void LoginConditions::readShutdown(sd_bus_message* reply) {
    const char* kind = nullptr;
    std::uint64_t at = 0;
    if (sd_bus_message_read(reply, "v", "(st)", &kind, &at) < 0) return fail(kOtherAnswer);
    if (at != 0) _conditions.scheduledShutdown = kind;
    finishIfComplete();
}

void LoginConditions::readSessions(sd_bus_message* reply) {
    if (sd_bus_message_enter_container(reply, 'a', "(susso)") < 0) return fail(kOtherAnswer);
    const char* path = nullptr;
    while (sd_bus_message_read(reply, "(susso)", nullptr, nullptr, nullptr, nullptr, &path) > 0) {
        const auto read = [this, path = std::string(path)](const auto& found, const BusError& error) {
            readSession(path, found, error);
        };
        _calls[path] = readLoginSession(_bus, path, _clocks, read);
    }
    finishIfComplete();
}

void LoginConditions::readSession(const std::string& path, const std::optional<LoginSession>& found,
                                  const BusError& error) {
    const auto call = _calls.extract(path);
    const bool isGone =
        error.name == SD_BUS_ERROR_UNKNOWN_OBJECT || error.name == "org.freedesktop.login1.NoSuchSession";
    if (!found && !isGone) return fail(error ? error.message : kOtherAnswer);
    if (found && found->counts) {
        _conditions.sessions.push_back(found->session);
        _userIds.push_back(found->userId);
    }
    finishIfComplete();
}

void LoginConditions::fail(const std::string& reason) {
    _calls.clear();
    _conditions.failure = reason;
    finishIfComplete();
}

void LoginConditions::finishIfComplete() {
    if (!_calls.empty()) return;
    _conditions.sinceLastSession = _watch.sinceLastLogOut();
    const Answered answered = std::move(_answered);  // it may destroy this object
    answered(std::move(_conditions), _userIds);
}

}  // namespace quorel
