#include "daemon/modules/ModuleActions.h"

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <utility>

#include "kit/MOLLog.h"
#include "model/PlainText.h"
#include "model/PropertyList.h"
#include "model/Wire.h"
#include "scheduler/Outcome.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

constexpr std::chrono::seconds kAgentsReturn{10};

/// Beside this program, also when its file is replaced by a newer one while it runs.
std::string runner() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / "quorel-run-module";
}

std::string unitName(const std::string& token) {
    return "quorel-" + token + ".service";
}

/// The first that is missing, as the system says it; empty where none is. Folders that the daemon's own sandbox hides
/// count as there. The service manager would only say that there can be no sandbox.
std::string missingAmong(const std::vector<std::string>& folders) {
    struct stat status {};
    for (const std::string& folder : folders)
        if (stat(folder.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR))
            return plainText(folder) + ": " + std::strerror(errno);
    return {};
}

/// As docs/protocol.md has it for agents.
Dictionary actionFor(const Occurrence& occurrence) {
    return {{keys::kToken, occurrence.token()}, {keys::kAction, plainText(occurrence.schedule->action)}};
}

}  // namespace

ModuleActions::ModuleActions(EventLoop& loop, sd_bus* bus, const std::string& root, const Clocks& clocks,
                             Agents& agents, Ended ended)
    : _bus(bus),
      _clocks(clocks),
      _agents(agents),
      _ended(std::move(ended)),
      _runner(runner()),
      _registry(root),
      _units(bus),
      _agentsAreBack(loop,
                     [this] {
                         for (const Dictionary& action : std::exchange(_sought, {}))
                             runAsUser(action[keys::kToken].text(), action);
                     }),
      _lock(bus, "sleep", "block") {}

std::optional<Module> ModuleActions::module(const std::string& action) const {
    const ActionDescription* found = _registry.find(action);
    if (!found) return {};
    return Module{found->isSound() && !found->program.empty(), found->makeUp};
}

void ModuleActions::start(const Occurrence& occurrence, bool madeUp) {
    const std::string token = occurrence.token();
    const ScheduleReading& schedule = *occurrence.schedule;
    const ActionDescription* module = _registry.find(schedule.action);
    const Value& parameters = schedule.parameters;
    const auto input = encodePropertyList(parameters.isDictionary() ? parameters : Dictionary());
    begin(token);
    if (!module || !module->isSound() || !input)
        return end(token, ActionEnd::kNotStarted, 0, std::string(outcome::kNoModule));

    const std::string path = _registry.programPath(*module);
    if (!module->isSystem) {
        Dictionary action = actionFor(occurrence);
        action.set(keys::kDue, occurrence.due);
        action.set(keys::kMadeUp, madeUp);
        action.set(keys::kParameters, *input);
        action.set(keys::kProgram, path);
        action.set(keys::kTimeLimit, module->limit);
        return runAsUser(token, action);
    }
    if (const std::string missing = missingAmong(module->writes); !missing.empty())
        return end(token, ActionEnd::kNotStarted, 0, missing);
    const UnitProgram program{.description = "Quorel: " + plainText(schedule.action),
                              .command = {_runner, path},
                              .name = module->program,
                              .input = *input,
                              .environment = {{"QUOREL_ACTION", schedule.action},
                                              {"QUOREL_OCCURRENCE", token},
                                              {"QUOREL_DUE", std::to_string(occurrence.due)},
                                              {"QUOREL_MADE_UP", madeUp ? "1" : "0"}},
                              .limit = std::chrono::seconds(module->limit),
                              .sandbox = UnitSandbox{module->mayUseNetwork, module->isRoot, module->writes}};
    _units.start(unitName(token), program, ender(token));
}

void ModuleActions::find(const Occurrence& occurrence) {
    const std::string token = occurrence.token();
    const ActionDescription* module = _registry.find(occurrence.schedule->action);
    begin(token);
    if (!module || module->isSystem) return _units.find(unitName(token), ender(token));
    Dictionary action = actionFor(occurrence);
    action.set(keys::kFind, true);
    action.set(keys::kTimeLimit, module->limit);
    _sought.push_back(std::move(action));
    _agentsAreBack.start(kAgentsReturn);
}

void ModuleActions::runAsUser(const std::string& token, const Dictionary& action) {
    const bool isSought = action[keys::kFind].intValue() != 0;
    const auto found = [this, token, action, isSought](std::optional<unsigned> user) {
        const auto question = std::exchange(_running.at(token), nullptr);
        const std::string_view reason = !user ? outcome::kNobody : outcome::kNoAgent;
        if (user && _agents.isThere(*user)) return _agents.run(*user, token, action, ender(token));
        if (isSought) return end(token, ActionEnd::kUnknown, 0, {});
        end(token, ActionEnd::kNotStarted, 0, std::string(reason));
    };
    _running.at(token) = std::make_unique<SeatedUser>(_bus, _clocks, found);
}

TransientUnits::Ended ModuleActions::ender(const std::string& token) {
    return [this, token](ActionEnd how, int status, const std::string& reason) { end(token, how, status, reason); };
}

void ModuleActions::begin(const std::string& token) {
    _running[token];
    _lock.take("A planned action is running.",
               [](const BusError& error) { MOLLog("Sleep cannot be held up: %s", error.message.c_str()); });
}

void ModuleActions::end(const std::string& token, ActionEnd end, int status, const std::string& reason) {
    const auto gone = _running.extract(token);  // the token may be part of it
    if (_running.empty()) _lock.release();
    _ended(token, end, status, reason);
}

}  // namespace quorel
