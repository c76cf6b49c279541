#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "scheduler/Instant.h"
#include "scheduler/PowerCourse.h"
#include "scheduler/Rules.h"
#include "scheduler/World.h"

namespace quorel {

/// The computer's own sleep and waking: the alarms, what woke it, for how long it is kept awake, and its going back to
/// sleep where it was woken for nothing. Durations go by the boot clock, which nobody sets.
class Wakefulness {
public:
    /// What it has of the scheduler.
    struct Hands {
        std::function<void(std::function<void()> effect)> act;  ///< once the state is stored
        std::function<void(std::string_view code)> tell;
        std::function<Ticket()> ticket;
        std::function<bool()> wakeUpIsNear;
        std::function<Instant(Instant upTo)> lastUnpaused;
    };
    Wakefulness(Power& power, Alarms& alarms, Hands hands) : _power(power), _alarms(alarms), _hands(std::move(hands)) {}

    void start(const ClockReading& now);
    /// First of all at any event: what has woken the computer shows before an alarm is set anew.
    void observe(const ClockReading& now);
    void clockSet(Seconds by);

    /// The computer is about to sleep, and by our own asking perhaps so that only the start-up alarm ends it.
    void announced(Lid lid, bool mayWriteMemory);
    bool isAnnounced() const { return _announced.has_value(); }
    /// Announced, and there may yet be a word that it is over.
    bool isBetween() const;
    /// Time spent asleep that `over` has not yet dealt with.
    bool hasSlept() const;
    /// The sleep is over; without a word from the system the lid is as it was before. Whether our alarm has woken a
    /// computer that may lie in a bag.
    bool over(std::optional<Lid> lid);
    void lidSeen(Lid lid);

    /// By our alarm, just now.
    bool wasWoken() const;
    /// A wake-up: ten minutes.
    void keepAwake();
    /// The end of these, for the state; 0: over.
    Instant awakeUntil() const;
    void restore(Instant awakeUntil);

    void used();
    /// False where the ticket is not its own.
    bool conditionsRead(Ticket ticket, const Conditions& conditions, const std::string& running);
    void powerReplied(Ticket ticket, PowerReply reply, const std::string& reason);

    /// What is due by now. `isRunning`: an action that the computer may have been woken for. `staysAwake`: a Schedule
    /// wants it to.
    void settle(bool isRunning, bool staysAwake);
    std::optional<Instant> nextCall() const;

    /// Both alarms, as the plan wants them. Of a computer that sleeps or is off nobody's alarm but ours is known: they
    /// are reckoned from the plan alone.
    void arm(std::optional<Instant> wake, std::optional<Instant> startup);
    /// They are written again, whatever they are.
    void rewriteAlarms() { _rewrite = true; }
    bool mustRewrite() const { return _rewrite; }
    std::optional<Instant> wakeAlarm() const { return _wakeAlarm; }
    std::optional<Instant> startupAlarm() const { return _startupAlarm; }

private:
    enum class Woken { kOtherwise, kByAlarm, kByStone };
    Instant now() const { return _now.instant(); }
    Instant wallOf(std::int64_t boot) const { return now() + (boot - _now.boot + 999) / 1000; }
    Seconds longestSilence() const;
    bool isNear(const std::optional<Instant>& alarm, Seconds late = rules::kAlarmLate) const;
    void holdLid(bool hold);
    std::optional<Instant> stone() const;
    void follow(const PowerCourse::Move& move);

    Power& _power;
    Alarms& _alarms;
    const Hands _hands;
    ClockReading _now;

    std::optional<std::int64_t> _announced;  ///< on the awake clock
    bool _mayWriteMemory = false;            ///< that sleep
    Lid _lid;
    std::int64_t _sleptSeen = 0;  ///< time asleep that has been dealt with, in milliseconds
    std::optional<Woken> _woken;  ///< by what, until that has been dealt with

    // On the boot clock, 0 for none.
    std::int64_t _wokenAt = 0;  ///< by our alarm
    std::int64_t _awakeUntil = 0;
    std::int64_t _backAt = 0;  ///< to sleep
    bool _wokenFor = false;    ///< something that may still be running
    bool _keepsAwake = false;
    bool _holdsLid = false;
    std::optional<PowerCourse> _back;
    Ticket _backTicket = 0;

    std::optional<Instant> _wakeAlarm;
    std::optional<Instant> _startupAlarm;
    bool _isStone = false;  ///< the wake alarm is a stepping stone: nothing is due then
    bool _rewrite = false;
};

}  // namespace quorel
