#include "daemon/acting/Terminals.h"

#include <algorithm>
#include <string_view>

#include "kit/MOLLog.h"
#include "linux/login/Logind.h"
#include "words/Language.h"

namespace quorel {

namespace {

constexpr std::size_t kMostTerminals = 64;
constexpr std::chrono::seconds kLimit{20};  // for a terminal that takes nothing

/// A console or what a remote log-in has, "tty2" or "pts/0". Programs that let people in may call theirs anything.
bool isTerminal(std::string_view name) {
    const bool isOurs = name.starts_with("tty") || name.starts_with("pts/");
    const std::string_view rest = name.substr(std::min(name.size(), std::size_t{name.starts_with("pts/") ? 4U : 3U}));
    return isOurs && !rest.empty() && rest.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ") == rest.npos;
}

}  // namespace

void Terminals::announce(const Upcoming& shutDown) {
    if (std::pair announced{shutDown.token, shutDown.at}; announced == std::exchange(_announced, announced)) return;
    // In English, like all that the daemon says by itself: it does not know who reads it.
    _text =
        filled("\r\n\aQuorel: {1} at {2}\r\n\"quorelctl skip {3}\" prevents it.\r\n",
               {shutDown.schedule->restarts ? "Restarting" : "Shutting down", timeText(shutDown.at), shutDown.token});
    _list = logind::call(
        _bus, logind::kPatience, logind::kManager, "ListSessions",
        [this](sd_bus_message* reply) { readSessions(reply); }, "");
}

void Terminals::readSessions(sd_bus_message* reply) {
    if (errorOf(reply) || sd_bus_message_enter_container(reply, 'a', "(susso)") < 0) return;
    const char* path = nullptr;
    while (_reads.size() < kMostTerminals &&
           sd_bus_message_read(reply, "(susso)", nullptr, nullptr, nullptr, nullptr, &path) > 0) {
        const auto read = [this, key = std::string(path)](const std::optional<LoginSession>& found, const BusError&) {
            const auto call = _reads.extract(key);
            if (found && found->counts && !found->session.isGraphical && isTerminal(found->terminal))
                write(found->terminal);
        };
        _reads.insert_or_assign(path, readLoginSession(_bus, path, _clocks, read));
    }
}

void Terminals::write(const std::string& terminal) {
    std::string unit = "quorel-tells-" + terminal + ".service";
    std::ranges::replace(unit, '/', '-');
    const UnitProgram program{.description = "Quorel: tells " + terminal,
                              .command = {"/usr/bin/tee", "/dev/" + terminal},
                              .name = "quorel-tells",
                              .input = _text,
                              .environment = {},
                              .limit = kLimit,
                              .sandbox = {}};
    _units.start(unit, program, [terminal](ActionEnd end, int, const std::string& reason) {
        if (end != ActionEnd::kRan) MOLLog("%s was not told of the shut-down. %s", terminal.c_str(), reason.c_str());
    });
}

}  // namespace quorel
