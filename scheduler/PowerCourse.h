#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/Dictionary.h"
#include "scheduler/Instant.h"
#include "scheduler/World.h"

namespace quorel {

/// Where an occurrence stands.
enum class Step {
    kPlanned,  ///< nothing has happened yet
    kSkipped,  ///< "not this time", its minute yet to come
    kDone,     ///< ended before its minute, which is yet to come; its outcome is told
    kPostponed,
    kMakeUp,   ///< missed, and to run soon
    kAwaited,  ///< found nobody to run for, and may run until `at`
    kRunning,  ///< a module's action
    // Sleep and shut-down:
    kLooking,   ///< may it be? Asked, not yet answered
    kWaiting,   ///< something holds it up
    kWarned,    ///< people see it coming
    kChecking,  ///< the last look before the call
    kActing,    ///< the system was asked for it
};

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

    /// `at` is its time, `idle` as holdOf has it. A quiet one warns nobody and does not wait: it is to happen at once
    /// or not at all.
    PowerCourse(Instant at, Seconds idle, bool quiet = false) : _at(at), _idle(idle), _quiet(quiet) {}

    Step step() const { return _step; }
    /// When it will happen, as far as is known.
    Instant at() const { return _step == Step::kWarned ? _next : _at; }
    Instant next() const { return _next; }
    const Hold& hold() const { return _hold; }
    /// As it is stored: what a course that goes on after a restart has to know.
    Instant waitingSince() const { return _waitingSince; }

    Move begin(Instant now);
    /// Takes up waiting where an earlier run of the program left it.
    Move goOn(Instant now, Instant waitingSince);
    Move reached(Instant now);
    /// What it has been waiting for has ended.
    Move freed(Instant now) { return _asked ? Move{} : look(now, Step::kWaiting); }
    Move looked(Instant now, const Hold& hold);
    Move replied(Instant now, PowerReply reply, const std::string& reason);
    /// The computer is awake again, or was not seen to go.
    Move awake(Instant now, bool slept);
    Move used(Instant now, const std::string& who);
    /// Something else takes its place.
    Move giveUp(Instant now) const;
    /// The clock was set by so much when it showed `before`.
    void clockMoved(Instant before, Seconds by);
    /// Whether its time, on the clock as it goes now, is yet to come.
    bool isAhead(Instant now) const { return now < _at; }

private:
    Move look(Instant now, Step step);
    Move wait(Instant now, const Hold& hold);
    Move failed(Instant now, const std::string& reason);

    Instant _at;
    Seconds _idle;
    bool _quiet;
    Step _step = Step::kPlanned;
    Instant _next = 0;
    bool _asked = false;        ///< a look is under way
    Instant _waitingSince = 0;  ///< 0: has not waited
    Instant _heldSince = 0;     ///< by use, or by all else
    bool _heldByUse = false;
    Hold _hold;
    int _refusals = 0;
};

}  // namespace quorel
