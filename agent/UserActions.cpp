#include "agent/UserActions.h"
#include "model/Wire.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <utility>

namespace quorel {

namespace {

namespace keys = wire::keys;

constexpr std::ptrdiff_t kMostAtOnce = 16;
constexpr std::size_t kMostKept = 64;

/// What the user's programs are to know of the session: the service manager knows it only where a desktop tells it.
constexpr std::string_view kOfTheSession[] = {
    "DISPLAY",         "WAYLAND_DISPLAY",     "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS",
    "XDG_RUNTIME_DIR", "XDG_CURRENT_DESKTOP", "LANG",       "LC_"};

std::map<std::string, std::string> ownEnvironment() {
    std::map<std::string, std::string> found;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view line = *entry;
        const std::string_view name = line.substr(0, line.find('='));
        const bool isTold = std::ranges::any_of(kOfTheSession, [&](std::string_view one) {
            return one.ends_with('_') ? name.starts_with(one) : name == one;
        });
        if (isTold && name.size() < line.size()) found.emplace(name, line.substr(name.size() + 1));
    }
    return found;
}

}  // namespace

UserActions::UserActions(sd_bus* bus, Report report) : _report(std::move(report)), _units(bus) {}

void UserActions::run(const Array& actions) {
    for (const Value& action : actions) {
        const std::string& token = action[keys::kToken].text();
        const auto taken = _taken.find(token);
        const auto running = std::ranges::count_if(_taken, [](const auto& one) { return one.second.end.empty(); });
        if (taken == _taken.end() && running < kMostAtOnce)
            begin(token, action);
        else if (taken != _taken.end() && !taken->second.end.empty())
            _report(token, taken->second.end, taken->second.status, taken->second.reason);
    }
}

void UserActions::begin(const std::string& token, const Value& action) {
    _taken[token];
    const std::string name = "quorel-" + token + ".service";
    const auto ended = [this, token](ActionEnd end, int status, const std::string& reason) {
        this->ended(token, {std::string(kActionEnds[static_cast<std::size_t>(end)]), status, reason});
    };
    if (action[keys::kFind].intValue() != 0) return _units.find(name, ended);
    const std::string& path = action[keys::kProgram].text();
    UnitProgram program{.description = "Quorel: " + action[keys::kAction].text(),
                        .command = {path},
                        .name = path.substr(path.rfind('/') + 1),
                        .input = action[keys::kParameters].text(),
                        .environment = ownEnvironment(),
                        .limit = std::chrono::seconds(action[keys::kTimeLimit].integer()),
                        .sandbox = {}};
    program.environment["QUOREL_ACTION"] = action[keys::kAction].text();
    program.environment["QUOREL_OCCURRENCE"] = token;
    program.environment["QUOREL_DUE"] = std::to_string(action[keys::kDue].integer());
    program.environment["QUOREL_MADE_UP"] = action[keys::kMadeUp].intValue() != 0 ? "1" : "0";
    _units.start(name, program, ended);
}

void UserActions::ended(const std::string& token, const End& end) {
    _taken[token] = end;
    // The daemon may be restarted before it hears of it, and then asks again. The earliest go first.
    for (auto each = _taken.begin(); _taken.size() > kMostKept && each != _taken.end();)
        each = each->second.end.empty() ? std::next(each) : _taken.erase(each);
    _report(token, end.end, end.status, end.reason);
}

}  // namespace quorel
