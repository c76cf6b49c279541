#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "scheduler/Agenda.h"
#include "scheduler/Calendar.h"
#include "scheduler/Occurrence.h"
#include "scheduler/Outcome.h"
#include "scheduler/State.h"
#include "scheduler/World.h"

namespace quorel {

/// One line of what comes next.
struct Upcoming {
    std::string token;  ///< what skip and postpone name it by; another after each postponement
    Instant due = 0;    ///< when its Schedule has it
    Instant at = 0;     ///< when it will be: later once postponed, warned late or made up
    std::shared_ptr<const ScheduleReading> schedule;
    Step step = Step::kPlanned;
    std::string by;  ///< who skipped or postponed it
    Hold hold;       ///< what a waiting one waits for
};

/// Carries a list of Schedules out. It is told what happens, together with the clocks, and calls the world; it owns no
/// clock, no thread and no bus. After each event `nextCall` says when it wants to hear from the clock again.
///
/// One thread. Events may come from inside its calls of the world; they are then taken after the present one. Any event
/// may come at any time and any number of times. Bring `now` up to date for each.
class Scheduler {
public:
    struct World {
        Calendar& calendar;
        Power& power;
        Alarms& alarms;
        Actions& actions;
        Store& store;
        Reports& reports;
    };
    /// The world must outlive it.
    explicit Scheduler(const World& world);

    /// First of all: the list ("Schedule Array" of the preferences), the state that was stored last (absent where there
    /// is none; anything where it is damaged) and a text that is another after each boot.
    void start(Now now, const Value& list, const Value& state, const std::string& bootId);
    /// The list was saved, or what modules there are has changed.
    void listSaved(Now now, const Value& list);
    /// Time of `nextCall` reached, the clock set, or nothing in particular.
    void tick(Now now);
    void zoneChanged(Now now);
    /// `lidClosed`: closed, and without external power. All alarms are as they must be when this returns.
    void goingToSleep(Now now, bool lidClosed);
    /// Whether it has slept, the clocks tell.
    void resumed(Now now, bool lidClosed);
    /// The system goes down. The start-up alarm is as it must be when this returns.
    void goingDown(Now now);
    /// Somebody uses the computer: input after a while, or a session became active. `who` for a person to read.
    void used(Now now, const std::string& who);

    void looked(Now now, Ticket ticket, const Conditions& conditions);
    /// `reason` says why it was refused.
    void powerReplied(Now now, Ticket ticket, PowerReply reply, const std::string& reason);
    /// `token` as Occurrence::token has it; `status` and `reason` of one that failed.
    void actionEnded(Now now, const std::string& token, ActionEnd end, int status, const std::string& reason);

    /// "Not this time", said by `by`; false when there is no such occurrence any more. Repeating it changes nothing.
    /// Not from inside a call of the world.
    bool skip(Now now, const std::string& token, const std::string& by);
    /// Fifteen minutes on from its time or from now, whichever is later. As skip.
    bool postpone(Now now, const std::string& token, const std::string& by);

    /// When `tick` must be called at the latest; nothing: not before something else happens.
    std::optional<Instant> nextCall() const;
    /// What is open and what comes next, by time; at most `most`.
    std::vector<Upcoming> upcoming(std::size_t most) const;
    /// The last 500, as Outcome::value has them, oldest first.
    const Array& outcomes() const;
    /// Schedules of the list that never run.
    const std::vector<ScheduleFault>& faults() const;
    std::optional<Instant> armedWake() const;
    std::optional<Instant> armedStartup() const;

private:
};

}  // namespace quorel
