#pragma once

#include <cstdint>
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
#include "scheduler/EventTable.h"
#include "scheduler/Occurrence.h"
#include "scheduler/Outcome.h"
#include "scheduler/Pauses.h"
#include "scheduler/Rules.h"
#include "scheduler/State.h"
#include "scheduler/Wakefulness.h"
#include "scheduler/WallClock.h"
#include "scheduler/World.h"

namespace quorel {

/// One line of what comes next.
struct Upcoming {
    std::string token;  ///< what skip and postpone name it by; another after each postponement
    Instant due = 0;    ///< when its Schedule has it
    Instant at = 0;     ///< when it will be: later once postponed, warned late or made up
    std::shared_ptr<const ScheduleReading> schedule;
    Step step = Step::kPlanned;
    Instant until = 0;  ///< of one that keeps the computer awake: its end
    std::string by;     ///< who skipped or postponed it
    Hold hold;          ///< what a waiting one waits for
};

/// Carries a list of Schedules out. What an event does to what is open, EventTable.h decides. It is told what happens,
/// together with the clocks, and calls the world; it owns no clock, no thread and no bus. After each event `nextCall`
/// says when it wants to hear from the clock again.
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
    void start(ClockReading now, const Value& list, const Value& state, const std::string& bootId);
    /// The list was saved, or what modules there are has changed.
    void listSaved(ClockReading now, const Value& list);
    /// Time of `nextCall` reached, the clock set, or nothing in particular.
    void tick(ClockReading now);
    void zoneChanged(ClockReading now);
    /// All alarms are as they must be when this returns.
    void goingToSleep(ClockReading now, Lid lid);
    /// Whether it has slept, the clocks tell.
    void resumed(ClockReading now, Lid lid);
    /// While Power::holdLid holds it.
    void lidSeen(ClockReading now, Lid lid);
    /// The system goes down. The start-up alarm is as it must be when this returns.
    void goingDown(ClockReading now);
    /// Somebody uses the computer: input after a while, or a session became active. `who` for a person to read.
    void used(ClockReading now, const std::string& who);
    /// Actions can run for a user for whom they could not before.
    void agentCame(ClockReading now);
    /// What the system says of the kinds of sleep; until it does, none is denied.
    void sleepKindsDenied(ClockReading now, const DeniedKinds& denied);

    void conditionsRead(ClockReading now, Ticket ticket, const Conditions& conditions);
    /// `reason` says why it was refused.
    void powerReplied(ClockReading now, Ticket ticket, PowerReply reply, const std::string& reason);
    /// `token` as Occurrence::token has it; `status` and `reason` of one that failed.
    void actionEnded(ClockReading now, const std::string& token, ActionEnd end, int status, const std::string& reason);

    /// Whether there is such an occurrence, and the system is not doing it yet.
    bool knows(const std::string& token) const;
    /// "Not this time", said by `by`; false when there is no such occurrence any more. Repeating it changes nothing.
    /// Not from inside a call of the world.
    bool skip(ClockReading now, const std::string& token, const std::string& by);
    /// A skip taken back, while its minute lies ahead. As skip.
    bool unskip(ClockReading now, const std::string& token, const std::string& by);
    /// So much on from its time or from now, whichever is later; brought to a minute at least and twelve hours at most.
    /// As skip.
    bool postpone(ClockReading now, const std::string& token, const std::string& by,
                  Seconds length = rules::kPostponement);
    /// A Schedule, as a list has it, once and now, as if this were its minute: announced, and held up by what holds
    /// others up. Its place in the list, its days and whether it is enabled do not matter.
    struct Trial {
        std::string token;       ///< of the occurrence
        std::string_view fault;  ///< why there is none: as a list's faults, or one of `wire::trial_fault`
    };
    Trial tryNow(ClockReading now, const Value& schedule);

    /// What is due within it is not carried out; its number is told when it is over. As skip.
    Pauses::Answer pause(ClockReading now, const Pause& wanted);
    /// The pause of that token is over, or does not come; as Pauses::end. As skip.
    bool resume(ClockReading now, const std::string& token, bool onlyBrief = false);
    const Pauses& pauses() const { return _pauses; }

    /// When `tick` must be called at the latest; nothing: not before something else happens.
    std::optional<Instant> nextCall() const;
    /// What is open and what comes next, by time; at most `most`, of those that will not be before `from`.
    std::vector<Upcoming> upcoming(std::size_t most, Instant from = 0) const;
    /// The last 500, as Outcome::value has them, oldest first.
    const Array& outcomes() const { return _outcomes; }
    /// Schedules of the list that never run, or not as things stand.
    const std::vector<ScheduleFault>& faults() const { return _faults; }
    /// Nothing runs until it is set, or for ten minutes.
    bool isClockBehind() const { return !_clock.isTrusted() && _clock.isBehind(); }
    /// The alarms as they were set last.
    std::optional<Instant> armedWake() const { return _wakefulness.wakeAlarm(); }
    std::optional<Instant> armedStartup() const { return _wakefulness.startupAlarm(); }

private:
    /// An event, with what its fates have to know of it.
    struct Happening {
        Event event;
        Instant at = 0;                            ///< a wake-up's time
        Seconds by = 0;                            ///< so much the clock was set, or it is postponed
        const OpenOccurrence* newcomer = nullptr;  ///< the sleep or shut-down that comes into course
        std::string who = {};                      ///< has used the computer, or decided
    };

    // An event is taken to its end: first what it changes, then what has become due, then the state is stored, and only
    // then the world hears of it.
    void process(ClockReading now, std::function<void()> event);
    void observe(ClockReading now);
    void settle();
    void begin();
    void commit();
    void afterSleep(std::optional<Lid> lid);
    Instant plannedUpTo() const;
    void takeOverSaved();
    void act(std::function<void()> effect) { _effects.push_back({std::move(effect), false}); }
    void actAsWritten(OpenOccurrence& open, std::function<void()> effect);
    void unwritten(OpenOccurrence& open);
    void tell(std::string_view code, const Occurrence* occurrence, Dictionary arguments = {});
    Instant now() const { return _clock.now(); }

    // The table.
    bool happen(const Happening& what);
    bool befall(OpenOccurrence& open, const Happening& what);
    void befallInTime(OpenOccurrence& open, Fate fate, const Happening& what);
    void befallInCourse(OpenOccurrence& open, Fate fate, const Happening& what);
    void befallByClock(OpenOccurrence& open, Fate fate, Seconds by);
    void asBeforeItsCourse(OpenOccurrence& open);
    void setAside(OpenOccurrence& open, const Happening& what);
    bool decide(ClockReading now, const std::string& token, const Happening& what);

    // What is planned.
    void takeList(const Value& list);
    bool isDenied(const ScheduleReading& schedule) const;
    Instant courseFrom(const ScheduleReading& schedule, Instant at) const;
    void planAnew();
    const Occurrence* firstOf(ActionKind kind) const;
    const Occurrence* nextPower() const;
    std::vector<Occurrence> coming(const Agenda& agenda, Instant from, std::size_t most,
                                   const Agenda::Wanted& wanted = nullptr, bool wholeMinutes = false) const;
    void takeUp(Instant upTo);
    void takeUpMinute();
    void takeUpMissed(Instant upTo);
    void reportMissed(const Occurrence& last, std::int64_t count);
    std::string_view causeOf(Instant due) const;
    bool isWakeUpNear() const;
    std::optional<Instant> earliest(const Agenda& agenda, bool ScheduleReading::*flag,
                                    const std::function<Instant(const ScheduleReading&, Instant)>& alarm) const;
    void arm();

    // What is open.
    OpenOccurrence& open(const Occurrence& occurrence, Instant at);
    const OpenOccurrence* find(const Occurrence& occurrence) const;
    OpenOccurrence* asking(Ticket ticket);
    const OpenOccurrence* openOne(std::string_view token) const;
    std::optional<Occurrence> plannedOne(std::string_view token) const;
    OpenOccurrence* named(std::string_view token, Event event);
    void remove(const OpenOccurrence& open);
    void finish(OpenOccurrence& open, std::string_view code, Dictionary arguments = {});
    void close(OpenOccurrence& open, bool isToStay);
    bool isPaused(Instant at) const { return _pauses.cover(at) || _pauses.cover(now()); }
    void countPaused(Instant at) { _pauses.count(_pauses.cover(at) ? at : now()); }
    void paused(OpenOccurrence& open);
    void pauseOpen();
    void endPauses();
    std::optional<Instant> nextOf(const OpenOccurrence& open) const;
    void reachAll();
    void missed(OpenOccurrence& open);
    bool isWorthwhile(const Occurrence& one) const;
    void makeUp(OpenOccurrence& open, Seconds after);
    void run(OpenOccurrence& open);
    void runAction(OpenOccurrence& open);
    void queue(OpenOccurrence& open);
    void wakeUp(OpenOccurrence& open);
    Instant endOf(const Occurrence& one) const;
    void stayAwake(OpenOccurrence& open);
    void letSleep(OpenOccurrence& open, const std::string& by);
    void reckonAnew(OpenOccurrence& open);
    void beginCourse(OpenOccurrence& open);
    void goOn(OpenOccurrence& open);
    void anewOrMissed(OpenOccurrence& open);
    void follow(OpenOccurrence& open, const PowerCourse::Move& move);
    void notStarted(OpenOccurrence& open, const std::string& reason);
    std::string runningAction() const;
    void openWokenFor();
    void withdraw();

    // What outlives the program.
    StoredState state() const;
    void restore(const StoredState& state);

    World _world;
    Value _list;  ///< what the agenda was made from
    DeniedKinds _denied;
    std::optional<Agenda> _agenda;
    std::vector<ScheduleFault> _faults;
    Instant _watermark = 0;         ///< everything up to here has been taken up
    std::vector<Occurrence> _next;  ///< those of the first minute after it
    std::list<OpenOccurrence> _open;
    bool _outlivesList = false;  ///< some of them, or did when the list was taken over
    Pauses _pauses;
    bool _wasPaused = false;
    Array _outcomes;
    std::string _bootId;

    WallClock _clock;
    Wakefulness _wakefulness;
    /// What was stored, until the clock is to be trusted and all goes on from there.
    std::optional<StoredState> _former;
    bool _hasBegun = false;       ///< with it
    std::optional<Value> _saved;  ///< a list, to be taken over when a sleep is over or the clock to be trusted
    std::int64_t _savedAt = 0;    ///< on the boot clock
    bool _zoneChanged = false;    ///< and to be taken over then
    std::string_view _lateness;   ///< why what is late now is late

    Ticket _lastTicket = 0;
    bool _changed = false;
    struct Effect {
        std::function<void()> run;
        bool mustBeWritten;  ///< beforehand
    };
    std::vector<Effect> _effects;
    std::deque<std::pair<ClockReading, std::function<void()>>> _inbox;
    bool _working = false;
};

}  // namespace quorel
