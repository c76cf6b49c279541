#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "linux/time/SystemCalendar.h"
#include "model/Schedule.h"
#include "scheduler/Scheduler.h"

namespace quorel {

inline void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

/// A Schedule of every day: "Sleep", "WakeUp", "ShutDown" or the name of a module, at hour and minute.
inline Value every(const std::string& action, int hour, int minute, Dictionary parameters = {}) {
    Dictionary schedule{{schedule_keys::kIsEnabled, true},
                        {schedule_keys::kActionType, "com.quorel.plugin." + action},
                        {schedule_keys::kActionHour, hour},
                        {schedule_keys::kActionMinute, minute},
                        {schedule_keys::kActionParameters, std::move(parameters)}};
    for (const std::string_view day : schedule_keys::kActiveOnDays) schedule.set(day, true);
    return schedule;
}

/// A computer in virtual time, from Monday 2027-03-01 00:00 on, and a log of all that happens to it. It does at once
/// what it is asked, from inside the call.
class VirtualWorld : public Power, public Alarms, public Actions, public Store, public Reports {
public:
    struct Killed {};
    static constexpr Instant kMonday = 1803859200;

    explicit VirtualWorld(const char* zone = "UTC") {
        setZone(zone);
        _calendar.refresh();
    }

    // What the test decides.
    Conditions conditions;
    std::vector<PowerReply> replies;  ///< to the next calls; later ones are accepted
    bool lies = false;                ///< says yes and does not sleep
    bool silent = false;              ///< never says that it is back
    bool answers = true;              ///< looks are answered
    Lid lid;
    bool full = false;  ///< nothing can be stored
    bool farAlarms = true;
    bool loses = false;   ///< a restarted daemon does not find the action that it had begun
    Instant wakenAt = 0;  ///< by hand, if not by an alarm before
    std::string killAt;   ///< the next call that the program does not live to make
    std::string bootId = "boot 1";
    Seconds actionLasts = 10;
    bool lonely = false;  ///< actions find nobody to run for
    Value list;

    // What a test wants to hear of.
    std::function<void(const Value& before, const Value& after)> saved;
    std::function<void(const std::string& what, const Occurrence* one)> acted;
    std::function<void(std::optional<Instant> at)> armed;
    std::int64_t withoutWordSince = -1'000'000;  ///< on the awake clock: asleep, and silent about being back

    ClockReading now{kMonday * 1000, 3600'000, 3600'000};
    int ticks = 0;  ///< how often the program wanted to be woken
    std::vector<std::string> log;
    std::vector<Outcome> outcomes;
    std::optional<Instant> wakeAlarm, startupAlarm;
    Value stored;
    std::unique_ptr<Scheduler> scheduler;

    static Instant at(int day, int hour, int minute, int second = 0) {
        return kMonday + day * kDay + hour * kHour + minute * kMinute + second;
    }
    /// From that time of Monday on.
    void begin(int hour, int minute, int second, Array schedules) {
        pass(at(0, hour, minute, second) - now.instant(), true);
        list = std::move(schedules);
        boot();
    }
    void boot() {
        scheduler = std::make_unique<Scheduler>(Scheduler::World{_calendar, *this, *this, *this, *this, *this});
        attempt([&] { scheduler->start(now, list, stored, bootId); });
    }
    void saveList(Array schedules) {
        list = std::move(schedules);
        scheduler->listSaved(now, list);
    }
    /// The clock and the program run on until then.
    void until(Instant end) {
        while (scheduler && now.instant() < end) {
            attempt([&] { serve(); });
            if (!scheduler) break;
            Instant next = end;
            if (const auto call = scheduler->nextCall()) next = std::min(next, *call);
            for (const auto& [ends, token] : _running) next = std::min(next, ends);
            pass(std::max<Seconds>(next - now.instant(), 0), true);
            attempt([&] {
                for (const auto& [ends, token] : std::exchange(_running, {})) {
                    if (ends > now.instant()) {
                        _running.emplace_back(ends, token);
                    } else {
                        scheduler->actionEnded(now, token, lonely ? ActionEnd::kNotStarted : ActionEnd::kRan, 0,
                                               lonely ? "nobody" : "");
                    }
                }
                if (!scheduler->nextCall() || *scheduler->nextCall() > now.instant()) return;
                ++ticks;
                scheduler->tick(now);
            });
        }
        if (scheduler) attempt([&] { serve(); });
    }
    void kill() { scheduler.reset(); }
    void pass(Seconds seconds, bool awake) {
        now.wall += seconds * 1000;
        now.boot += seconds * 1000;
        if (awake) now.awake += seconds * 1000;
    }
    void setClock(Seconds by) {
        now.wall += by * 1000;
        if (startupAlarm) *startupAlarm += by;  // the hardware's clock is not set
        if (scheduler) scheduler->tick(now);
    }
    /// Sleeps by whatever cause, until the alarm or `wakenAt`. Out of hibernation another alarm wakes it.
    void sleep(bool hibernates = false) {
        const std::optional<Instant>& alarm = hibernates ? startupAlarm : wakeAlarm;
        scheduler->goingToSleep(now, lid);
        Instant end = wakenAt > now.instant() ? wakenAt : now.instant() + 365 * kDay;
        if (alarm) end = std::min(end, *alarm);
        if (lies) end = now.instant();
        pass(end - now.instant(), false);
        if (!lies) note("awake");
        scheduler->tick(now);  // the clocks tell, before the system does
        if (!silent) return scheduler->resumed(now, lid);
        withoutWordSince = now.awake;
    }
    /// Off, without a word before where it is `sudden`. When it is on again its clock is so much ahead.
    void off(Seconds seconds, bool sudden, Seconds ahead = 0) {
        if (!sudden) scheduler->goingDown(now);
        kill();
        pass(seconds, true);
        now.wall += ahead * 1000;
        now.boot = now.awake = 20'000;
        withoutWordSince = -1'000'000;
        for (const auto& [ends, token] : std::exchange(_running, {})) _lost.insert(token);
        bootId += "'";
        boot();
    }
    /// The program may be killed by it.
    template <class F>
    void attempt(F f) try {
        f();
    } catch (const Killed&) {
        note("killed");
        scheduler.reset();
        _waiting.clear();
    }
    std::string token(std::size_t index = 0) { return scheduler->upcoming(index + 1).at(index).token; }

    static std::string clock(Instant instant) {
        char text[32];
        const Seconds day = (instant - kMonday) / kDay, second = instant - kMonday - day * kDay;
        std::snprintf(text, sizeof text, second % 60 ? "%02d:%02d:%02d" : "%02d:%02d", int(second / kHour),
                      int(second / 60 % 60), int(second % 60));
        return (day ? "+" + std::to_string(day) + " " : "") + text;
    }
    void note(const std::string& what) { log.push_back(clock(now.instant()) + " " + what); }

private:
    static std::string shortName(const std::string& action) { return action.substr(action.rfind('.') + 1); }
    void about(const std::string& what, const Occurrence* one = nullptr) {
        if (killAt == what) {
            killAt.clear();
            throw Killed();
        }
        if (acted) acted(what, one);
    }
    void serve() {
        while (!_waiting.empty()) {
            for (const auto& one : std::exchange(_waiting, {})) one();
        }
    }

    void readConditions(Ticket ticket, bool) override {
        if (answers) scheduler->conditionsRead(now, ticket, conditions);
        if (answers) scheduler->conditionsRead(now, ticket, conditions);  // twice does no harm
    }
    void suspend(Ticket ticket, SleepKind kind) override {
        static constexpr const char* kCalls[] = {"suspend", "hibernate", "suspend, then hibernate", "sleep somehow"};
        about("suspend");
        note(kCalls[static_cast<std::size_t>(kind)]);
        const PowerReply reply = nextReply();
        scheduler->powerReplied(now, ticket, reply, "busy");
        if (reply == PowerReply::kAccepted) _waiting.emplace_back([this, kind] { sleep(kind != SleepKind::kSuspend); });
    }
    void shutDown(Ticket ticket, bool restart) override {
        about("shut down");
        note(restart ? "restart" : "shut down");
        const PowerReply reply = nextReply();
        scheduler->powerReplied(now, ticket, reply, "busy");
        if (reply == PowerReply::kAccepted && !lies) _waiting.emplace_back([this] { scheduler->goingDown(now); });
    }
    PowerReply nextReply() {
        if (replies.empty()) return PowerReply::kAccepted;
        const PowerReply reply = replies.front();
        replies.erase(replies.begin());
        return reply;
    }
    void keepAwake(bool keep) override { note(keep ? "keep awake" : "let sleep"); }
    void holdLid(bool hold) override { note(hold ? "hold lid" : "let lid"); }
    bool reachFar() const override { return farAlarms; }
    void armWake(std::optional<Instant> when) override {
        wakeAlarm = when;
        if (armed) armed(when);
    }
    void armStartup(std::optional<Instant> when) override {
        startupAlarm = when;
        if (armed) armed(when);
    }
    /// "Late…" may be made up within an hour, "Plain…" not; "Empty" has no program.
    std::optional<Module> module(const std::string& action) const override {
        const std::string name = shortName(action);
        if (name == "Empty") return Module{};
        if (name.starts_with("Late")) return Module{true, kHour};
        return name.starts_with("Plain") ? std::optional(Module{true, 0}) : std::nullopt;
    }
    void start(const Occurrence& one, bool) override {
        about("start", &one);
        note("start " + shortName(one.schedule->action));
        _running.emplace_back(now.instant() + actionLasts, one.token());
    }
    void find(const Occurrence& one) override {
        note("find " + shortName(one.schedule->action));
        if (loses || _lost.contains(one.token())) scheduler->actionEnded(now, one.token(), ActionEnd::kUnknown, 0, "");
    }
    bool save(const Value& state) override {
        if (full) return false;
        const Value before = std::exchange(stored, state);
        if (saved) saved(before, stored);
        return true;
    }
    void ended(const Outcome& outcome) override {
        std::string line = outcome.code;
        if (!outcome.action.empty()) line += " " + shortName(outcome.action);
        if (outcome.due) line += " " + clock(outcome.due);
        for (std::size_t i = 0; i < outcome.arguments.size(); ++i) {
            const std::string& key = outcome.arguments.keyAt(i);
            const Value& value = outcome.arguments.valueAt(i);
            if (value.isText() && !value.text().empty()) line += " " + value.text();
            const bool isTime = key == "Seconds" || key == "From" || key == "Until";
            if (value.isInteger() && !isTime) line += " " + std::to_string(value.integer());
            if (value.isBoolean() && value.intValue()) line += " " + key;
        }
        note(line);
        outcomes.push_back(outcome);
    }
    void changed() override {
        std::set<std::string> warned;
        for (const Upcoming& one : scheduler->upcoming(5)) {
            if (one.step != Step::kWarned) continue;
            warned.insert(one.token);
            if (!_warned.count(one.token)) note("warn, for " + clock(one.at));
        }
        _warned = warned;
    }

    SystemCalendar _calendar;
    std::set<std::string> _warned;
    std::set<std::string> _lost;                  ///< the actions that ran when it was switched off
    std::vector<std::function<void()>> _waiting;  ///< what the computer does when the call has returned
    std::vector<std::pair<Instant, std::string>> _running;
};

}  // namespace quorel
