#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "daemon/acting/Agents.h"
#include "linux/EventLoop.h"
#include "linux/login/LoginSessions.h"
#include "linux/login/Logind.h"
#include "linux/time/Clocks.h"
#include "linux/units/ModuleRegistry.h"
#include "linux/units/TransientUnit.h"
#include "scheduler/Occurrence.h"
#include "scheduler/World.h"

namespace quorel {

/// Runs modules' actions: "system" ones as transient units in a sandbox, "user" ones by the agent of the user who sits
/// at the computer. This program itself starts nothing. While one runs, the computer is kept from sleep. One thread.
class ModuleActions : public Actions {
public:
    using Ended = std::function<void(const std::string& token, ActionEnd end, int status, const std::string& reason)>;

    /// `root` stands before the modules' folder. All but `root` must outlive it. `ended` may be called from inside
    /// calls here.
    ModuleActions(EventLoop& loop, sd_bus* bus, const std::string& root, const Clocks& clocks, Agents& agents,
                  Ended ended);

    /// Looks what modules there are.
    void scan() { _registry.scan(); }
    const ModuleRegistry& registry() const { return _registry; }

    std::optional<Module> module(const std::string& action) const override;
    void start(const Occurrence& occurrence, bool madeUp) override;
    void find(const Occurrence& occurrence) override;

private:
    TransientUnits::Ended ender(const std::string& token);
    void begin(const std::string& token);
    void end(const std::string& token, ActionEnd end, int status, const std::string& reason);
    void runAsUser(const std::string& token, const Dictionary& action);

    sd_bus* const _bus;
    const Clocks& _clocks;
    Agents& _agents;
    const Ended _ended;
    const std::string _runner;
    ModuleRegistry _registry;
    TransientUnits _units;
    /// What runs, by token, and whoever is asked for to run it.
    std::map<std::string, std::unique_ptr<SeatedUser>> _running;
    /// What users' agents are to look for, once they have had the time to notice that this program was restarted.
    std::vector<Dictionary> _sought;
    LoopTimer _agentsAreBack;
    InhibitorLock _lock;
};

}  // namespace quorel
