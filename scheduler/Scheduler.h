#pragma once

#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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
    /// Actions can run for a user for whom they could not before.
    void agentCame(Now now);

    void looked(Now now, Ticket ticket, const Conditions& conditions);
    /// `reason` says why it was refused.
    void powerReplied(Now now, Ticket ticket, PowerReply reply, const std::string& reason);
    /// `token` as Occurrence::token has it; `status` and `reason` of one that failed.
    void actionEnded(Now now, const std::string& token, ActionEnd end, int status, const std::string& reason);

    /// Whether there is such an occurrence, and the system is not doing it yet.
    bool knows(const std::string& token) const;
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
    const Array& outcomes() const { return _outcomes; }
    /// Schedules of the list that never run.
    const std::vector<ScheduleFault>& faults() const { return _faults; }
    /// Nothing runs until it is set, or for ten minutes.
    bool isClockBehind() const { return _dormant.has_value(); }
    /// The alarms as they were set last.
    std::optional<Instant> armedWake() const { return _wakeAlarm; }
    std::optional<Instant> armedStartup() const { return _startupAlarm; }

private:
    // An event is taken to its end: first what it changes, then what has become due, then the state is stored, and only
    // then the world hears of it.
    void take(Now now, std::function<void()> event);
    void observeClocks(Now now);
    void settle();
    void commit();
    void act(std::function<void()> effect) { _effects.push_back(std::move(effect)); }
    void tell(std::string_view code, const Occurrence* occurrence, Dictionary arguments = {});

    Instant now() const { return _now.instant(); }
    Instant bootInstant() const { return (_now.wall - _now.boot) / 1000; }
    bool isLate(Instant due) const;

    // The clocks and sleep.
    void clockSet(Seconds by);
    void correct(Seconds by);
    void afterSleep(bool lidClosed);
    void moveBack(const PowerCourse::Move& move);

    // What is planned.
    void takeList(const Value& list);
    void planAnew();
    void takeUp();
    void takeUpMinute();
    void takeUpMissed();
    void makeUp(OpenOccurrence& open);
    void reportMissed(const Occurrence& last, std::int64_t count);
    std::string_view causeOf(Instant due) const;
    void arm();
    std::optional<Instant> earliest(bool ScheduleReading::*flag,
                                    const std::function<Instant(const ScheduleReading&, Instant)>& alarm) const;
    std::optional<Instant> wakeWanted() const;
    std::optional<Instant> startupWanted() const;

    // What is open.
    OpenOccurrence& open(const Occurrence& occurrence, Instant at);
    OpenOccurrence* find(const Occurrence& occurrence);
    bool isOpen(const Occurrence& occurrence) const;
    OpenOccurrence* asking(Ticket ticket);
    const OpenOccurrence* openOne(std::string_view token) const;
    std::optional<Occurrence> plannedOne(std::string_view token) const;
    OpenOccurrence* named(std::string_view token);
    void remove(const OpenOccurrence& open);
    void finish(OpenOccurrence& open, std::string_view code, Dictionary arguments = {});
    std::optional<Instant> nextOf(const OpenOccurrence& open) const;
    void reachAll();
    void reach(OpenOccurrence& open);
    void missed(OpenOccurrence& open);
    void run(OpenOccurrence& open);
    void wakeUp(const Occurrence& one);
    void beginCourse(OpenOccurrence& open);
    void giveUpFor(const OpenOccurrence* newcomer);
    void move(OpenOccurrence& open, const PowerCourse::Move& move);
    void endCourses(std::string_view cause);
    void awakeCourses(bool slept);
    void reportLid();
    void arrived();
    void notStarted(OpenOccurrence& open, const std::string& reason);
    std::string runningAction() const;
    void withdraw();
    void moveOpen(Seconds by);
    void endOpen(Seconds by);

    // What outlives the program.
    StoredState state() const;
    void restore(const StoredState& state);
    void goOn(OpenOccurrence& open, Instant waitingSince, bool undisturbed);

    World _world;
    std::optional<Agenda> _agenda;
    std::vector<ScheduleFault> _faults;
    Instant _watermark = 0;         ///< everything up to here has been taken up
    std::vector<Occurrence> _next;  ///< those of the first minute after it
    std::list<OpenOccurrence> _open;
    Array _outcomes;
    std::string _bootId;

    Now _now;
    std::int64_t _offset = 0;  ///< wall clock ahead of boot clock, in milliseconds
    Seconds _setBy = 0;        ///< the clock, since things were last settled
    bool _slept = false;       ///< the computer, since then
    bool _starting = false;
    std::int64_t _sleptSeen = 0;                ///< time asleep that afterSleep has dealt with, in milliseconds
    std::optional<std::int64_t> _dormant;       ///< clock behind: nothing runs up to here on the boot clock
    std::optional<std::int64_t> _goingToSleep;  ///< since then on the awake clock
    bool _lidClosed = false;
    Instant _wokenAt = 0;     ///< by our alarm, last
    Instant _awakeUntil = 0;  ///< the ten minutes after a wake-up
    bool _keepsAwake = false;
    std::optional<PowerCourse> _back;  ///< to sleep, where it was woken for nothing
    Instant _backAt = 0;
    Ticket _backTicket = 0;

    std::optional<Instant> _wakeAlarm;
    std::optional<Instant> _startupAlarm;
    bool _wakeIsStone = false;  ///< a stepping stone: nothing is due then
    bool _rewrite = false;      ///< alarms are to be written again

    Ticket _lastTicket = 0;
    bool _changed = false;
    std::vector<std::function<void()>> _effects;
    std::deque<std::pair<Now, std::function<void()>>> _inbox;
    bool _working = false;
};

}  // namespace quorel
