#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "model/Value.h"
#include "scheduler/Instant.h"
#include "scheduler/Outcome.h"

// What the scheduler asks of the world. It calls on the thread that called it, and only when what it is about to do has
// been stored. Answers go to the Scheduler's methods of the same name, from inside the call or at any time later; late,
// repeated and unasked ones do no harm.

namespace quorel {

struct Occurrence;

/// Names one question. Its answer brings it along.
using Ticket = std::uint64_t;

/// A login session that counts: a user's, and not closing.
struct Session {
    std::string name;  ///< for a person: the user, and where
    bool isGraphical = false;
    std::optional<Seconds> agentIdle;  ///< how long its user's agent says it has not been used; none: no agent's word
    std::optional<Seconds> hintIdle;   ///< what logind tells; 0 in use, none: it cannot tell
};

struct Inhibitor {
    std::string who;
    std::string why;
};

/// What decides whether the computer may sleep or be shut down now.
struct Conditions {
    std::optional<std::string> failure;  ///< why nothing could be read; the rest does not count then
    std::vector<Inhibitor> inhibitors;   ///< everybody's `block` on sleep or shutdown but our own, for running actions
    std::string scheduledShutdown;       ///< the kind that somebody else has scheduled, or empty
    std::vector<Session> sessions;
    Seconds sinceLastSession = 0;  ///< since the later of boot, resume and the last log-out
};

enum class PowerReply { kAccepted, kRefused, kUnderWay };

/// A laptop's. Others have one that is open.
struct Lid {
    bool isClosed = false;
    bool isPowered = false;  ///< from outside
    /// It may be in a bag.
    bool isInBag() const { return isClosed && !isPowered; }
};

/// How the computer sleeps. All but the first may write its memory to disk, which takes a while; then no wake alarm
/// ends it.
enum class SleepKind { kSuspend, kHibernate, kSuspendThenHibernate, kAsTheSystemDoes };
/// Kinds that this computer does not have, as the system says.
using DeniedKinds = std::set<SleepKind>;

class Power {
public:
    virtual ~Power() = default;
    /// Answer: `conditionsRead`. `idle`: it matters how long nobody has used the sessions.
    virtual void readConditions(Ticket ticket, bool idle) = 0;
    virtual void suspend(Ticket ticket, SleepKind kind) = 0;  ///< never another kind; answer: `powerReplied`
    virtual void shutDown(Ticket ticket, bool restart) = 0;   ///< answer: `powerReplied`
    /// Holds or drops the idle inhibitor that keeps a desktop from falling asleep.
    virtual void keepAwake(bool keep) = 0;
    /// Keeps a closed lid from sending the computer to sleep, or lets it. Answer: `lidSeen` every few seconds while it
    /// is kept.
    virtual void holdLid(bool hold) = 0;
};

class Alarms {
public:
    virtual ~Alarms() = default;
    /// Whether a wake alarm further ahead than 23 hours can be set. Constant.
    virtual bool reachFar() const = 0;
    /// Both: the one alarm there is; none takes it away. Always in the future. The same may come again: it is to be
    /// written again, since the clock or the system's own programs may have changed it.
    virtual void armWake(std::optional<Instant> at) = 0;     ///< from sleep
    virtual void armStartup(std::optional<Instant> at) = 0;  ///< from off
};

/// What is known of an action's module.
struct Module {
    bool hasProgram = false;
    Seconds makeUp = 0;  ///< how late a missed action may still run; 0: not at all
};

/// Modules' actions; sleep, wake-up and shut-down are none of them.
class Actions {
public:
    virtual ~Actions() = default;
    /// Nothing for an unknown action type. Asked when a list is taken over.
    virtual std::optional<Module> module(const std::string& action) const = 0;
    /// Runs it; answer: `actionEnded`, always, with the time limit being the other side's. `madeUp`: it comes later
    /// than planned, since it was missed.
    virtual void start(const Occurrence& occurrence, bool madeUp) = 0;
    /// One that an earlier run of this program has started; answer: `actionEnded`, kUnknown where it is not found.
    virtual void find(const Occurrence& occurrence) = 0;
};

class Store {
public:
    virtual ~Store() = default;
    /// Keeps a property list in place of the last. Durable when it returns true.
    virtual bool save(const Value& state) = 0;
};

class Reports {
public:
    virtual ~Reports() = default;
    virtual void ended(const Outcome& outcome) = 0;
    /// What `Scheduler::upcoming` tells has changed: warnings began or ended, too.
    virtual void changed() = 0;
};

}  // namespace quorel
