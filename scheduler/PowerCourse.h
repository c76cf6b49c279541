#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/Dictionary.h"
#include "model/Wire.h"
#include "scheduler/Instant.h"
#include "scheduler/Outcome.h"
#include "scheduler/Step.h"
#include "scheduler/World.h"

namespace quorel {

/// What holds a sleep or shut-down up; the kinds stand with the outcomes.
struct Hold {
    std::string_view kind;  ///< empty: nothing
    std::string who;
    std::string why;
    explicit operator bool() const { return !kind.empty(); }
};

/// What of these conditions holds up something that wants the computer unused for so long (0: does not care).
/// `running` is the action type of a module's action under way, or empty.
Hold holdOf(const Conditions& conditions, Seconds idle, const std::string& running);

/// Whether somebody is known to have used a session that recently.
bool wasUsed(const Conditions& conditions, Seconds recently);

/// The course of one sleep or shut-down, from a minute before its time to its end. It answers each event with what is
/// to be done now; time beyond that it asks for by `next`.
class PowerCourse {
public:
    enum class Do { kNothing, kLook, kAct, kEnd };
    struct Move {
        Do what = Do::kNothing;
        std::string_view code = {};  ///< kEnd: the outcome, with its arguments
        Dictionary arguments = {};
    };

    /// What it has waited by now; instants, or 0.
    struct Waited {
        Instant since = 0;
        Instant heldSince = 0;  ///< by use, or by all else
        bool byUse = false;
        friend bool operator==(const Waited&, const Waited&) = default;
    };

    /// `at` is its time, `idle` as holdOf has it. A quiet one warns nobody and does not wait: it is to happen at once
    /// or not at all.
    PowerCourse(Instant at, Seconds idle, bool quiet = false) : _at(at), _idle(idle), _quiet(quiet) {}
    /// As an earlier run of the program left it. To be told to begin or to go on.
    PowerCourse(Instant at, Seconds idle, Step step, Instant next, const Waited& waited)
        : _at(at), _idle(idle), _quiet(false), _step(step), _next(next), _waited(waited) {}

    /// What it asks for may take as long as writing the memory to disk.
    void writesMemory() { _writesMemory = true; }

    Step step() const { return _step; }
    Instant time() const { return _at; }
    /// When it will happen, as far as is known.
    Instant at() const { return _step == Step::kWarned ? _next : _at; }
    Instant next() const { return _next; }
    const Hold& hold() const { return _hold; }
    const Waited& waited() const { return _waited; }
    /// Whether it may wait on.
    bool hasPatience(Instant now) const;

    /// With a full warning. What it has waited before counts.
    Move begin(Instant now);
    /// Goes on to wait.
    Move goOn(Instant now) { return look(now, Step::kWaiting); }
    Move reached(Instant now);
    /// What it has been waiting for has ended.
    Move freed(Instant now) { return _asked ? Move{} : look(now, Step::kWaiting); }
    Move conditionsRead(Instant now, const Hold& hold);
    /// That it acts could not be stored, and so it did not.
    void unwritten(Instant now);
    Move replied(Instant now, PowerReply reply, const std::string& reason);
    /// The computer sleeps and is back, or stayed awake.
    Move slept(Instant now) const { return {Do::kEnd, outcome::kSlept, {{wire::keys::kUntil, now}}}; }
    Move stayedAwake(Instant now);
    Move used(Instant now, const std::string& who);
    /// Something else takes its place.
    Move giveUp(Instant now) const;
    /// The clock was set by so much when it showed `before`.
    void clockMoved(Instant before, Seconds by);

private:
    Move look(Instant now, Step step);
    Move wait(Instant now, const Hold& hold);
    Move failed(Instant now, const std::string& reason);

    Instant _at;
    Seconds _idle;
    bool _quiet;
    bool _writesMemory = false;
    Step _step = Step::kPlanned;
    Instant _next = 0;
    bool _asked = false;  ///< a look is under way
    Waited _waited;
    Hold _hold;
    int _refusals = 0;
    Instant _unwrittenSince = 0;
};

}  // namespace quorel
