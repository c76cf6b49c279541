#include "linux/login/LoginSessions.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "linux/login/Logind.h"

namespace quorel {

namespace {

/// What logind tells of a session.
struct Told {
    std::string user, userClass, state, type, seat, terminal, host;
    bool isActive = false, isIdle = false;
    Instant idleSince = 0;
};

constexpr struct {
    std::string_view name;
    std::string Told::*member;
} kTexts[] = {{"Name", &Told::user}, {"Class", &Told::userClass}, {"State", &Told::state},
              {"Type", &Told::type}, {"TTY", &Told::terminal},    {"RemoteHost", &Told::host}};
constexpr struct {
    std::string_view name;
    bool Told::*member;
} kFlags[] = {{"Active", &Told::isActive}, {"IdleHint", &Told::isIdle}};

}  // namespace

std::optional<LoginSession> LoginSession::from(sd_bus_message* properties, Instant now) {
    Told told;
    LoginSession found;
    const bool complete = logind::readProperties(properties, [&](const std::string& name, const std::string& type) {
        const auto isNamed = [&](const auto& one) { return one.name == name; };
        if (const auto text = std::ranges::find_if(kTexts, isNamed); text != std::end(kTexts))
            told.*text->member = logind::readText(properties);
        else if (const auto flag = std::ranges::find_if(kFlags, isNamed); flag != std::end(kFlags))
            told.*flag->member = logind::readFlag(properties);
        else if (name == "IdleSinceHint")
            told.idleSince = static_cast<Instant>(logind::readNumber(properties) / 1'000'000);
        else if (name == "User" && type == "(uo)")
            sd_bus_message_read(properties, "(uo)", &found.userId, nullptr);
        else if (const char* id = nullptr;
                 name == "Seat" && type == "(so)" && sd_bus_message_read(properties, "(so)", &id, nullptr) > 0)
            told.seat = id;
    });
    if (!complete) return {};

    const bool isUsers = told.userClass == "user" || told.userClass.starts_with("user-");
    found.counts = isUsers && !told.userClass.ends_with("-incomplete") && told.state != "closing";
    found.isActive = told.isActive;
    const std::string place = !told.host.empty() ? told.host : !told.terminal.empty() ? told.terminal : told.seat;
    found.terminal = told.terminal;
    found.session.name = place.empty() ? told.user : told.user + " (" + place + ")";
    found.session.isGraphical = told.type == "x11" || told.type == "wayland" || told.type == "mir";
    // logind knows a desktop's idleness when it is told, and a terminal's by when it was last read. Where it knows
    // neither, as with most remote log-ins, the time is missing.
    if (found.session.isGraphical && !told.isIdle)
        found.session.hintIdle = 0;
    else if (told.idleSince > 0)
        found.session.hintIdle = std::max<Seconds>(0, now - told.idleSince);
    return found;
}

BusSlot readLoginSession(sd_bus* bus, const char* path, const Clocks& clocks,
                         std::function<void(std::optional<LoginSession>, const BusError&)> answered) {
    const logind::Object object = {path, logind::kManagerProperties.interface};
    const auto read = [&clocks, answered = std::move(answered)](sd_bus_message* reply) {
        if (const BusError error = errorOf(reply)) return answered({}, error);
        answered(LoginSession::from(reply, clocks.now().instant()), {});
    };
    return logind::call(bus, logind::kPatience, object, "GetAll", read, "s", logind::kSessionInterface);
}

SeatedUser::SeatedUser(sd_bus* bus, const Clocks& clocks, std::function<void(std::optional<unsigned>)> answered)
    : _answered(std::move(answered)) {
    constexpr logind::Object kSeat = {"/org/freedesktop/login1/seat/seat0", logind::kManagerProperties.interface};
    const auto sessionRead = [this](const std::optional<LoginSession>& found, const BusError&) {
        answer(found && found->counts ? std::optional<unsigned>(found->userId) : std::nullopt);
    };
    const auto seatRead = [this, bus, &clocks, sessionRead](sd_bus_message* reply) {
        const char* path = "/";
        if (sd_bus_message_read(reply, "v", "(so)", nullptr, &path) <= 0 || std::string_view(path) == "/")
            return answer({});
        _call = readLoginSession(bus, path, clocks, sessionRead);
    };
    _call = logind::call(bus, logind::kPatience, kSeat, "Get", seatRead, "ss", "org.freedesktop.login1.Seat",
                         "ActiveSession");
}

void SeatedUser::answer(std::optional<unsigned> user) {
    const auto answered = std::move(_answered);  // it may destroy this object
    answered(user);
}

LoginSessions::LoginSessions(sd_bus* bus, const Clocks& clocks, std::function<void(const LoginSession&)> used)
    : _bus(bus), _clocks(clocks), _used(std::move(used)), _quietSince(clocks.now().boot) {
    const auto added = [this](sd_bus_message* signal) {
        const char* path = nullptr;
        if (sd_bus_message_read(signal, "so", nullptr, &path) > 0) readSession(path);
    };
    _added = logind::watch(_bus, "SessionNew", added);
    _removed = logind::watch(_bus, "SessionRemoved", [this](sd_bus_message*) { restart(); });
    const auto changed = [this](sd_bus_message* signal) {
        bool active = false;
        if (sd_bus_message_skip(signal, "s") < 0) return;
        logind::readProperties(signal, [&](const std::string& name, const std::string&) {
            if (name == "Active") active = logind::readFlag(signal);
        });
        if (active) readSession(sd_bus_message_get_path(signal));
    };
    _changed = watchSignals(_bus, logind::kName,
                            "path_namespace='/org/freedesktop/login1/session',"
                            "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged'",
                            changed);
}

void LoginSessions::readSession(const char* path) {
    const auto read = [this, key = std::string(path)](const std::optional<LoginSession>& found, const BusError&) {
        const auto call = _reads.extract(key);
        if (found && found->counts && found->isActive) _used(*found);
    };
    if (_reads.size() < 64) _reads.insert_or_assign(path, readLoginSession(_bus, path, _clocks, read));
}

Seconds LoginSessions::sinceLastLogOut() const {
    return (_clocks.now().boot - _quietSince) / 1000;
}

void LoginSessions::restart() {
    _quietSince = _clocks.now().boot;
}

}  // namespace quorel
