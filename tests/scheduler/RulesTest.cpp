#include <gtest/gtest.h>

#include "tests/scheduler/VirtualWorld.h"

namespace quorel {
namespace {

using World = VirtualWorld;
using Log = std::vector<std::string>;

Instant t(int hour, int minute, int second = 0) {
    return World::at(0, hour, minute, second);
}
Instant next(int hour, int minute, int second = 0) {
    return World::at(1, hour, minute, second);
}
Value sleepWhenIdle() {
    return every("Sleep", 23, 0, {{"Only When Idle", true}});
}
const Value kSleep = every("Sleep", 23, 0);
const Value kDown = every("ShutDown", 23, 0);
const Value kWake = every("WakeUp", 7, 0);
const Value kPlain = every("Plain", 12, 0);
const Value kLate = every("Late", 12, 0);

struct Row {
    const char* rule;
    void (*play)(World&);
    Log log;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        World world;
        row.play(world);
        EXPECT_EQ(world.log, row.log) << row.rule;
    }
}

/// A sleep at 23:00, from 22:50 until 23:50, after a change of the world.
void night(World& w, Value schedule = kSleep) {
    w.begin(22, 50, 0, {std::move(schedule)});
    w.wakenAt = t(23, 40);
    w.until(t(23, 50));
}

TEST(Rules, SleepAndShutDown) {
    check({
        {"at its minute, after a minute's warning",
         [](World& w) { night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:40 awake", "23:40 slept Sleep 23:00"}},
        {"just saved: the whole minute passes",
         [](World& w) { w.begin(22, 59, 30, {kSleep}), w.until(t(23, 0)); },
         {"22:59:30 warn, for 23:00:30"}},
        {"shut-down",
         [](World& w) { night(w, kDown); },
         {"22:59 warn, for 23:00", "23:00 shut down", "23:00 shut-down ShutDown 23:00"}},
        {"restart",
         [](World& w) {
             night(w, every("ShutDown", 23, 0, {{"Restart", 1}}));
         },
         {"22:59 warn, for 23:00", "23:00 restart", "23:00 shut-down ShutDown 23:00 Restart"}},
        {"waits for an inhibitor, then warns",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kSleep}), w.until(t(23, 5, 30));
             w.conditions.inhibitors.clear();
             w.until(t(23, 6, 59));
         },
         {"23:06 warn, for 23:07"}},
        {"an inhibitor for half an hour; what it says forges nothing",
         [](World& w) {
             w.conditions.inhibitors = {{"apt\n", "\x1b[1mup\xff"}}, night(w);
         },
         {"23:30 gave-up Sleep 23:00 inhibitor 30 apt\uFFFD \uFFFD[1mup\uFFFD"}},
        {"somebody's scheduled shut-down",
         [](World& w) { w.conditions.scheduledShutdown = "poweroff", night(w); },
         {"23:30 gave-up Sleep 23:00 shutdown 30 poweroff"}},
        {"nobody tells",
         [](World& w) { w.answers = false, night(w); },
         {"23:31 gave-up Sleep 23:00 unknown 31 no-answer"}},
        {"an inhibitor that comes during the warning",
         [](World& w) {
             w.begin(22, 50, 0, {kSleep}), w.until(t(22, 59, 30));
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.until(t(23, 0, 30));
             w.conditions.inhibitors.clear();
             w.until(t(23, 1, 30));
         },
         {"22:59 warn, for 23:00", "23:01 warn, for 23:02"}},
        {"refused once",
         [](World& w) { w.replies = {PowerReply::kRefused}, night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:00 suspend", "23:40 awake", "23:40 slept Sleep 23:00"}},
        {"refused twice",
         [](World& w) {
             w.replies = {PowerReply::kRefused, PowerReply::kRefused}, night(w);
         },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:00 suspend", "23:00 refused Sleep 23:00 busy"}},
        {"yes without sleep",
         [](World& w) { w.lies = true, night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:00 suspend", "23:00 refused Sleep 23:00 stayed-awake"}},
        {"yes without sleep, and without a word",
         [](World& w) { w.lies = w.silent = true, night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:00:30 suspend", "23:01 refused Sleep 23:00 stayed-awake"}},
        {"back without a word",
         [](World& w) { w.silent = true, night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:40 awake", "23:40:30 slept Sleep 23:00"}},
        {"yes, and then nothing",
         [](World& w) { w.lies = true, night(w, kDown); },
         {"22:59 warn, for 23:00", "23:00 shut down", "23:01 shut down", "23:02 refused ShutDown 23:00 no-answer"}},
        {"one is under way",
         [](World& w) { w.replies = {PowerReply::kUnderWay}, night(w); },
         {"22:59 warn, for 23:00", "23:00 suspend", "23:00 overtaken Sleep 23:00 other"}},
        {"the computer sleeps meanwhile",
         [](World& w) {
             w.begin(22, 50, 0, {kSleep}), w.until(t(22, 59, 30));
             w.wakenAt = t(22, 59, 50);
             w.sleep(), w.until(t(23, 30));
         },
         {"22:59 warn, for 23:00", "22:59:30 overtaken Sleep 23:00 sleep", "22:59:50 awake"}},
        {"a shut-down waits over a nap, but not over two minutes",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kDown}), w.until(t(23, 5, 30));
             w.wakenAt = t(23, 7), w.sleep(), w.until(t(23, 7, 30));
             w.wakenAt = t(23, 20), w.sleep(), w.until(t(23, 30));
         },
         {"23:07 awake", "23:20 awake", "23:20 missed ShutDown 23:00 asleep 1"}},
        {"down meanwhile",
         [](World& w) {
             w.begin(22, 59, 0, {kDown, kSleep}), w.off(600, false), w.until(t(23, 30));
         },
         {"22:59 warn, for 23:00", "22:59 overtaken ShutDown 23:00 down", "23:09 missed Sleep 23:00 off 1"}},
    });
}

TEST(Rules, OnlyWhenIdle) {
    check({
        {"waits for it, as long as the agent says",
         [](World& w) {
             w.conditions.sessions = {{"ann", true, 0, 900}, {"bob", false, 0, 900}};
             w.begin(22, 50, 0, {sleepWhenIdle()}), w.until(next(0, 59, 30));
             w.conditions.sessions[0].agentIdle = 900;
             w.until(next(1, 0, 59));
         },
         {"+1 01:00 warn, for +1 01:01"}},
        {"where logind cannot tell it is in use",
         [](World& w) {
             w.conditions.sessions = {{"ann", true, 900, {}}, {"bob over ssh", false, 900, {}}};
             w.begin(22, 50, 0, {sleepWhenIdle()}), w.until(next(12, 0));
         },
         {"+1 11:00 gave-up Sleep 23:00 use 720 bob over ssh"}},
        {"nobody there, not long enough",
         [](World& w) {
             w.conditions.sinceLastSession = 899;
             w.begin(22, 50, 0, {sleepWhenIdle()}), w.until(t(23, 10, 30));
             w.conditions.sinceLastSession = 900, w.until(t(23, 11, 30));
         },
         {"23:11 warn, for 23:12"}},
        {"ends with the next wake-up; the ten minutes hold",
         [](World& w) {
             w.conditions.sessions = {{"ann", true, 0, {}}};
             w.begin(22, 50, 0, {sleepWhenIdle(), kWake}), w.until(next(8, 0));
         },
         {"+1 07:00 gave-up Sleep 23:00 use 480 ann", "+1 07:00 awake-already WakeUp +1 07:00", "+1 07:00 keep awake",
          "+1 07:10 let sleep"}},
        {"ends with the next sleep",
         [](World& w) {
             w.conditions.sessions = {{"ann", true, 0, {}}};
             w.begin(22, 50, 0, {sleepWhenIdle(), every("Sleep", 23, 30)}), w.until(t(23, 29, 30));
         },
         {"23:29 gave-up Sleep 23:00 use 29 ann", "23:29 warn, for 23:30"}},
        {"input during the warning",
         [](World& w) {
             w.conditions.sinceLastSession = 900;
             w.begin(22, 50, 0, {sleepWhenIdle()}), w.until(t(22, 59, 30));
             w.scheduler->used(w.now, "ann"), w.until(t(23, 1, 29));
         },
         {"22:59 warn, for 23:00", "23:00:30 warn, for 23:01:30"}},
        {"input does not matter to others",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.scheduler->used(w.now, "ann"), w.until(t(22, 59, 59)); },
         {"22:59 warn, for 23:00"}},
    });
}

TEST(Rules, OneMinute) {
    check({
        {"wake-ups, actions in list order, one shut-down when they have ended",
         [](World& w) {
             w.begin(11, 50, 0,
                     {every("Sleep", 12, 0), every("Plain2", 12, 0), every("WakeUp", 12, 0), kPlain,
                      every("ShutDown", 12, 0), every("ShutDown", 12, 0)});
             w.until(t(12, 5));
         },
         {"11:59 warn, for 12:00", "12:00 awake-already WakeUp 12:00", "12:00 start Plain2", "12:00 start Plain",
          "12:00 same-minute ShutDown 12:00", "12:00 wakes-then Sleep 12:00", "12:00 keep awake",
          "12:00:10 ran Plain2 12:00", "12:00:10 ran Plain 12:00", "12:00:10 warn, for 12:01:10", "12:01:10 shut down",
          "12:01:10 shut-down ShutDown 12:00"}},
        {"equal Schedules each run",
         [](World& w) {
             w.begin(11, 50, 0, {kPlain, kPlain}), w.until(t(12, 5));
         },
         {"12:00 start Plain", "12:00 start Plain", "12:00:10 ran Plain 12:00", "12:00:10 ran Plain 12:00"}},
    });
}

TEST(Rules, Missed) {
    const auto asleepUntil = [](World& w, const Value& schedule, Instant end) {
        w.begin(11, 50, 0, {schedule});
        w.wakenAt = end, w.sleep(), w.until(t(14, 0));
    };
    static const auto asleep = asleepUntil;
    check({
        {"two minutes late",
         [](World& w) { asleep(w, kPlain, t(12, 2)); },
         {"12:02 awake", "12:02 start Plain", "12:02:10 ran Plain 12:00"}},
        {"later",
         [](World& w) { asleep(w, kPlain, t(12, 2, 1)); },
         {"12:02:01 awake", "12:02:01 missed Plain 12:00 asleep 1"}},
        {"a sleep is never made up",
         [](World& w) { asleep(w, every("Sleep", 12, 0), t(12, 3)); },
         {"12:03 awake", "12:03 missed Sleep 12:00 asleep 1"}},
        {"an action, where its module allows it",
         [](World& w) { asleep(w, kLate, t(13, 0)); },
         {"13:00 awake", "13:02 start Late", "13:02:10 ran Late 12:00 MadeUp"}},
        {"but not for ever",
         [](World& w) { asleep(w, kLate, t(13, 0, 1)); },
         {"13:00:01 awake", "13:00:01 missed Late 12:00 asleep 1"}},
        {"off: one entry a Schedule, the last made up",
         [](World& w) {
             w.begin(11, 50, 0, {kPlain, kLate}), w.off(2 * kDay + 1200, true), w.until(World::at(2, 13, 0));
         },
         {"+2 12:10 missed Late +1 12:00 off 2", "+2 12:10 missed Plain +2 12:00 off 3", "+2 12:12 start Late",
          "+2 12:12:10 ran Late +2 12:00 MadeUp"}},
        {"the daemon was down",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.kill(), w.pass(1200, true), w.boot(); },
         {"12:10 missed Plain 12:00 daemon 1"}},
        {"the program hung",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.pass(1200, true), w.scheduler->tick(w.now); },
         {"12:10 missed Plain 12:00 late 1"}},
    });
}

TEST(Rules, Waking) {
    check({
        {"woken, and kept awake",
         [](World& w) { w.begin(6, 0, 0, {kWake}), w.sleep(), w.until(t(8, 0)); },
         {"07:00 awake", "07:00 woke-up WakeUp 07:00", "07:00 keep awake", "07:10 let sleep"}},
        {"half a minute early for an action",
         [](World& w) {
             w.begin(6, 0, 0, {every("Plain", 7, 0, {{"Needs Wake Up", "1"}})}), w.sleep(), w.until(t(7, 0, 5));
         },
         {"06:59:30 awake", "07:00 start Plain"}},
        {"started from off",
         [](World& w) {
             w.begin(6, 0, 0, {every("WakeUp", 7, 0, {{"Needs Startup", true}})});
             EXPECT_EQ(w.startupAlarm, t(6, 58));
             w.off(3500, false), w.until(t(7, 5));
         },
         {"07:00 started WakeUp 07:00", "07:00 keep awake"}},
        {"a closed lid on battery is not woken",
         [](World& w) {
             w.lidClosed = true, w.wakenAt = t(7, 30);
             w.begin(6, 0, 0, {kWake}), w.sleep(), w.until(t(8, 0));
         },
         {"07:30 awake", "07:30 missed WakeUp 07:00 asleep 1"}},
        {"closed while it slept: back to sleep",
         [](World& w) {
             w.begin(6, 0, 0, {kWake});
             w.scheduler->goingToSleep(w.now, false), w.pass(3600, false);
             w.wakenAt = t(9, 0), w.scheduler->resumed(w.now, w.lidClosed = true), w.until(t(9, 30));
         },
         {"07:00 lid-closed WakeUp 07:00", "07:00:20 back-to-sleep", "07:00:20 suspend", "09:00 awake"}},
        {"stepping stones",
         [](World& w) {
             Value thursday = kWake;
             for (const char* day : {"Monday", "Tuesday", "Wednesday"})
                 thursday = thursday.with(std::string("Active On ") + day, 0);
             w.farAlarms = false;
             w.begin(12, 0, 0, {thursday}), w.sleep(), w.until(World::at(1, 11, 1));
             w.scheduler->used(w.now, "ann"), w.until(World::at(2, 12, 0));
         },
         {"+1 11:00 awake", "+1 11:00:20 back-to-sleep", "+1 11:00:20 suspend", "+2 10:00:20 awake"}},
    });
}

TEST(Rules, ListsAndZones) {
    check({
        {"saved in its own minute: next time",
         [](World& w) { w.begin(11, 50, 0, {}), w.until(t(12, 0, 20)), w.saveList({kPlain}), w.until(next(12, 0)); },
         {"+1 12:00 start Plain"}},
        {"what the old one had due comes first",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.pass(600, true), w.saveList({}); },
         {"12:00 start Plain"}},
        {"withdrawn while warned",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.saveList({kWake}), w.until(t(23, 30)); },
         {"22:59 warn, for 23:00", "22:59 withdrawn Sleep 23:00"}},
        {"the same Schedule written otherwise stays, while it waits",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kSleep}), w.until(t(23, 5, 30));
             w.saveList({kWake, kSleep.with("Action Hour", "23 h")});
             w.conditions.inhibitors.clear(), w.until(t(23, 6, 30));
         },
         {"23:06 warn, for 23:07"}},
        {"what runs is not withdrawn",
         [](World& w) { w.begin(11, 59, 0, {kPlain}), w.until(t(12, 0, 5)), w.saveList({}), w.until(t(12, 1)); },
         {"12:00 start Plain", "12:00:10 ran Plain 12:00"}},
        {"the zone changes: followed, and nothing made up",
         [](World& w) {
             w.begin(10, 0, 0, {kPlain, every("Plain2", 20, 0)});
             setZone("Asia/Tokyo"), w.scheduler->zoneChanged(w.now), w.until(next(3, 1));
         },
         {"11:00 start Plain2", "11:00:10 ran Plain2 11:00", "+1 03:00 start Plain", "+1 03:00:10 ran Plain +1 03:00"}},
        {"what cannot run is said once",
         [](World& w) {
             const Array list = {every("Sleep", 24, 0), every("Nothing", 1, 0), every("Empty", 1, 0),
                                 every("Sleep", 1, -1)};
             w.begin(10, 0, 0, list), w.saveList(list), w.until(next(10, 0));
         },
         {"10:00 cannot-run Sleep 1 hour", "10:00 cannot-run Nothing 2 action", "10:00 cannot-run Empty 3 program",
          "10:00 cannot-run Sleep 4 minute"}},
    });
}

TEST(Rules, Clock) {
    // Runs at noon, and the clock is set at half past, or before.
    check({
        {"back by less than three hours: not again",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.until(t(12, 30)), w.setClock(-10740), w.until(t(13, 0)); },
         {"12:00 start Plain", "12:00:10 ran Plain 12:00"}},
        {"back by three hours: a correction",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.until(t(12, 30)), w.setClock(-10800), w.until(t(12, 1)); },
         {"12:00 start Plain", "12:00:10 ran Plain 12:00", "09:30 correction -10800", "12:00 start Plain",
          "12:00:10 ran Plain 12:00"}},
        {"on, and back again",
         [](World& w) { w.begin(11, 0, 0, {kPlain}), w.setClock(10740), w.setClock(-10740), w.until(t(13, 0)); },
         {"13:59 missed Plain 12:00 clock 1"}},
        {"on by a day",
         [](World& w) { w.begin(11, 0, 0, {kPlain}), w.setClock(kDay), w.until(next(12, 0, 5)); },
         {"+1 11:00 correction 86400", "+1 12:00 start Plain"}},
        {"a second to and fro",
         [](World& w) { w.begin(11, 59, 59, {kPlain}), w.setClock(1), w.setClock(-1), w.until(t(12, 1)); },
         {"12:00 start Plain", "12:00:10 ran Plain 12:00"}},
        {"back during a warning: again in its time",
         [](World& w) { w.begin(22, 59, 30, {kSleep}), w.setClock(-3600), w.until(t(22, 59, 30)); },
         {"22:59:30 warn, for 23:00:30", "22:59 warn, for 23:00"}},
        {"on over a warning",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.setClock(3600), w.until(next(1, 0)); },
         {"22:59 warn, for 23:00", "23:59 missed Sleep 23:00 clock 1"}},
        {"waiting goes on",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kSleep}), w.until(t(23, 20)), w.setClock(-7200), w.until(t(23, 0));
         },
         {"21:30 gave-up Sleep 23:00 inhibitor 30 apt upgrade"}},
        {"its time, once reached, does not come again",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kSleep}), w.until(t(23, 20)), w.setClock(-7200);
             w.conditions.inhibitors.clear(), w.setClock(1), w.until(t(21, 22));
         },
         {"21:21:01 warn, for 21:22:01"}},
        {"open ones end with a correction",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.setClock(-10800), w.until(t(22, 59, 30)); },
         {"22:59 warn, for 23:00", "19:59 clock-corrected Sleep 23:00", "19:59 correction -10800",
          "22:59 warn, for 23:00"}},
        {"dead battery: nothing for ten minutes",
         [](World& w) {
             w.begin(12, 30, 0, {kPlain, kWake}), w.kill();
             w.now.wall = t(6, 55) * 1000, w.boot();
             EXPECT_FALSE(w.wakeAlarm);
             w.until(t(12, 0, 5));
         },
         {"06:55 clock-behind 20100", "07:05 correction 0", "12:00 start Plain"}},
        {"dead battery, the clock set",
         [](World& w) {
             w.begin(11, 0, 0, {kPlain}), w.kill();
             w.now.wall = 60'000, w.boot(), w.until(120);
             w.setClock(t(12, 30) - 120), w.until(next(12, 0, 5));
             w.log.erase(w.log.begin());  // of 1970
         },
         {"12:30 correction 1803904080", "+1 12:00 start Plain"}},
    });
}

TEST(Rules, Restarts) {
    check({
        {"killed before the action is started",
         [](World& w) {
             w.killAt = "start", w.loses = true;
             w.begin(11, 50, 0, {kPlain}), w.until(t(12, 1)), w.boot(), w.until(t(12, 5));
         },
         {"12:00 killed", "12:00 find Plain", "12:00 unknown Plain 12:00"}},
        {"killed while it runs",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.until(t(12, 0, 5)), w.kill(), w.boot(), w.until(t(12, 5)); },
         {"12:00 start Plain", "12:00:05 find Plain", "12:00:10 ran Plain 12:00"}},
        {"killed after it has run",
         [](World& w) { w.begin(11, 50, 0, {kPlain}), w.until(t(12, 0, 30)), w.kill(), w.boot(), w.until(t(12, 5)); },
         {"12:00 start Plain", "12:00:10 ran Plain 12:00"}},
        {"killed before its minute",
         [](World& w) { w.begin(11, 59, 59, {kPlain}), w.kill(), w.pass(1, true), w.boot(); },
         {"12:00 start Plain"}},
        {"killed as it falls asleep",
         [](World& w) {
             w.killAt = "suspend", w.begin(22, 50, 0, {kSleep}), w.until(t(23, 1)), w.boot(), w.until(t(23, 30));
         },
         {"22:59 warn, for 23:00", "23:00 killed", "23:00 unknown Sleep 23:00"}},
        {"a warning begins anew",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.kill(), w.pass(90, true), w.boot(); },
         {"22:59 warn, for 23:00", "23:00:30 warn, for 23:01:30"}},
        {"what waits goes on",
         [](World& w) {
             w.conditions.inhibitors = {{"apt", "upgrade"}};
             w.begin(22, 50, 0, {kSleep}), w.until(t(23, 5)), w.kill(), w.pass(600, true), w.boot(), w.until(t(23, 40));
         },
         {"23:30 gave-up Sleep 23:00 inhibitor 30 apt upgrade"}},
        {"but not on the next morning",
         [](World& w) {
             w.conditions.sessions = {{"ann", true, 0, {}}};
             w.begin(22, 50, 0, {sleepWhenIdle()}), w.until(t(23, 5)), w.off(8 * kHour, true);
         },
         {"+1 07:05 missed Sleep 23:00 off 1"}},
        {"the state cannot be read",
         [](World& w) {
             w.stored = Dictionary{{"Version", 2}, {"Watermark", 5}}, w.begin(12, 0, 0, {kPlain}),
             w.until(next(12, 0, 1));
         },
         {"12:00 state-lost", "+1 12:00 start Plain"}},
    });
}

TEST(Rules, NotThisTime) {
    check({
        {"beforehand, twice, and over a restart",
         [](World& w) {
             w.begin(11, 0, 0, {kPlain});
             const std::string token = w.token();
             EXPECT_TRUE(w.scheduler->skip(w.now, token, "ann") && w.scheduler->skip(w.now, token, "bob"));
             w.kill(), w.boot();
             EXPECT_EQ(w.scheduler->upcoming(1)[0].step, Step::kSkipped);
             w.until(t(12, 1));
             EXPECT_FALSE(w.scheduler->skip(w.now, token, "ann"));
         },
         {"12:00 skipped Plain 12:00 ann"}},
        {"while warned",
         [](World& w) { w.begin(22, 59, 0, {kSleep}), w.scheduler->skip(w.now, w.token(), "ann"), w.until(t(23, 30)); },
         {"22:59 warn, for 23:00", "23:00 skipped Sleep 23:00 ann"}},
        {"postponed while warned; the same button twice is once",
         [](World& w) {
             w.begin(22, 59, 0, {kSleep});
             const std::string token = w.token();
             EXPECT_TRUE(w.scheduler->postpone(w.now, token, "ann") && w.scheduler->postpone(w.now, token, "bob"));
             w.until(t(23, 14, 10)), w.scheduler->postpone(w.now, w.token(), "ann"), w.until(t(23, 29, 10));
         },
         {"22:59 warn, for 23:00", "23:14 warn, for 23:15", "23:29 warn, for 23:30"}},
        {"a postponed wake-up keeps its alarm",
         [](World& w) {
             w.begin(6, 0, 0, {kWake}), w.scheduler->postpone(w.now, w.token(), "ann");
             EXPECT_EQ(w.wakeAlarm, t(7, 15));
             w.until(t(7, 20));
         },
         {"07:15 awake-already WakeUp 07:00", "07:15 keep awake"}},
        {"a postponed one found late",
         [](World& w) {
             w.begin(22, 59, 0, {kSleep}), w.scheduler->postpone(w.now, w.token(), "ann");
             w.wakenAt = t(23, 40), w.sleep(), w.until(t(23, 50));
         },
         {"22:59 warn, for 23:00", "23:40 awake", "23:40 missed Sleep 23:00 asleep 1"}},
        {"names of nothing",
         [](World& w) {
             w.begin(22, 59, 0, {kSleep});
             for (const char* name : {"", "x", "99999999999999999999", "1803942000-0-0", "-"}) {
                 EXPECT_FALSE(w.scheduler->skip(w.now, name, "ann") || w.scheduler->postpone(w.now, name, "ann"));
             }
         },
         {"22:59 warn, for 23:00"}},
    });
}

}  // namespace
}  // namespace quorel
