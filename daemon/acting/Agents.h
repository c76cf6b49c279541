#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "linux/EventLoop.h"
#include "linux/bus/Bus.h"
#include "linux/bus/Callers.h"
#include "model/Dictionary.h"
#include "scheduler/World.h"

namespace quorel {

/// The users' agents, by their end of the bus: one a user, the first to register, until it leaves. What there is for
/// them to do they fetch by a call, and what became of it they tell by a call; the daemon only hints that it is worth
/// calling, since nothing that it could send them would be proof of who had sent it. An agent's word counts for its own
/// user alone. docs/protocol.md has the calls. The thread of the loop that serves the bus.
class Agents {
public:
    /// How long users' sessions have not been used, as far as their agents can tell.
    using Idle = std::map<unsigned, Seconds>;
    using Ended = std::function<void(ActionEnd end, int status, const std::string& reason)>;

    /// Loop and callers must outlive it. Throws std::runtime_error.
    Agents(EventLoop& loop, Callers& callers);
    Agents(const Agents&) = delete;

    bool isThere(unsigned user) const;

    /// Asks the agents of these users, for a few seconds at most. `answered` is called once, now or later.
    void findIdle(const std::vector<unsigned>& users, std::function<void(const Idle&)> answered);
    /// While somebody who uses the computer is to be noticed at once. Counts for those who were asked last.
    void watchUse(bool watch);
    /// While no desktop is to put the computer to sleep by itself.
    void keepAwake(bool keep);
    std::function<void(unsigned user)> usedCallback;
    std::function<void()> cameCallback;  ///< an agent has registered

    /// Has the user's agent run an action: the dictionary is what `Work` tells of it. `ended` is called once, now or
    /// later; with kUnknown when the agent goes, or says nothing for longer than the action's "TimeLimit".
    void run(unsigned user, const std::string& token, Dictionary action, Ended ended);

private:
    struct Agent {
        unsigned user = 0;
        BusSlot leaving;  // a rule of the bus for each: one for all would wake this program whenever anybody leaves
    };
    struct Run {
        unsigned user = 0;
        Dictionary action;
        Ended ended;
        std::unique_ptr<LoopTimer> limit;
    };

    static int registerAgent(sd_bus_message* call, void* self, sd_bus_error* error);
    static int work(sd_bus_message* call, void* self, sd_bus_error* error);
    static int reportIdle(sd_bus_message* call, void* self, sd_bus_error* error);
    static int reportAction(sd_bus_message* call, void* self, sd_bus_error* error);

    void registerHeld(HeldCall& call);
    void registered(const std::string& name, bool isWatched);
    void left(const std::string& name);
    std::optional<unsigned> userOf(sd_bus_message* call) const;
    void hint();
    void answerIdle();
    void end(const std::string& token, ActionEnd end, int status, const std::string& reason);

    EventLoop& _loop;
    Callers& _callers;
    std::map<std::string, Agent, std::less<>> _agents;  // by bus name
    std::map<std::string, Run, std::less<>> _runs;      // by token

    std::int64_t _question = 0;   // the number of the last one
    std::set<unsigned> _asked;    // who was asked
    std::set<unsigned> _unheard;  // who has not answered yet
    Idle _idle;                   // who has
    std::vector<std::function<void(const Idle&)>> _waiting;
    LoopTimer _patience;
    bool _watches = false;
    bool _keepsAwake = false;

    BusSlot _object;
};

}  // namespace quorel
