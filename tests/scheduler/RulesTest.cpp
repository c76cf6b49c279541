#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "model/PropertyList.h"
#include "tests/scheduler/VirtualWorld.h"

namespace quorel {
namespace {

/// "23:00", "23:00:05", or "1+07:00" on the day after.
Instant timeOf(const std::string& text) {
    int day = 0, hour = 0, minute = 0, second = 0;
    const std::size_t plus = text.find('+');
    if (plus != std::string::npos) day = std::stoi(text);
    std::sscanf(text.c_str() + (plus == std::string::npos ? 0 : plus + 1), "%d:%d:%d", &hour, &minute, &second);
    return VirtualWorld::at(day, hour, minute, second);
}

/// "Sleep@23:00", with words behind slashes: idle, wake, start, restart, thursday; text has the hour as one; the last
/// may be a kind of sleep. "StayAwake@8:00/17:00" is until 17:00.
Value scheduleOf(const std::string& text) {
    const std::size_t at = text.find('@');
    int hour = 0, minute = 0;
    std::sscanf(text.c_str() + at + 1, "%d:%d", &hour, &minute);
    const auto has = [&](const char* word) { return text.find(word, at) != std::string::npos; };
    Dictionary own;
    if (has("/idle")) own.set("Only When Idle", true);
    if (has("/wake")) own.set("Needs Wake Up", "1");
    if (has("/start")) own.set("Needs Startup", true);
    if (has("/restart")) own.set("Restart", 1);
    for (const char* kind : {"suspend", "hibernate", "suspend-then-hibernate", "system", "snooze"}) {
        if (text.ends_with(std::string("/") + kind)) own.set("Kind", kind);
    }
    if (text.starts_with("StayAwake")) own.set("Until", text.substr(text.find('/') + 1));
    Value schedule = every(text.substr(0, at), hour, minute, own);
    if (has("/text")) schedule = schedule.with("Action Hour", std::to_string(hour) + " h");
    for (const std::string_view day : schedule_keys::kActiveOnDays) {
        if (has("/thursday")) schedule = schedule.with(day, day == "Active On Thursday");
    }
    return schedule;
}

/// What version 1.0 wrote on Monday at 12:05:30: an action awaited and one running, a sleep held up by apt, an action
/// skipped and one postponed.
Value storedBefore() {
    std::ifstream file(STATE_OF_1_0);
    return decodePropertyList(std::string(std::istreambuf_iterator<char>(file), {}));
}

/// What happens to the computer, step by step; the words are explained by what they do.
void play(VirtualWorld& w, const std::string& script) {
    std::string token;
    std::istringstream steps(script);
    for (std::string step; std::getline(steps >> std::ws, step, ';');) {
        std::istringstream words(step);
        std::string what, word;
        words >> what;
        std::vector<std::string> rest;
        while (words >> word) rest.push_back(word);
        const std::string first = rest.empty() ? "" : rest[0];
        const auto number = [&] { return static_cast<Seconds>(std::stoll(first)); };
        Array list;
        for (const std::string& one : rest) {
            if (one.find('@') != std::string::npos) list.push_back(scheduleOf(one));
        }
        const auto says = [&](bool done) {
            if (!done) w.note("no such");
        };
        if (what == "from") w.pass(timeOf(first) - w.now.instant(), true), w.list = list, w.boot();
        if (what == "save") w.saveList(list);
        if (what == "until") w.until(timeOf(first));
        if (what == "apt") w.conditions.inhibitors = {{"apt\n", "\x1b[1mup\xff"}};
        if (what == "free") w.conditions = {};
        if (what == "poweroff") w.conditions.scheduledShutdown = what;
        if (what == "user") w.conditions.sessions.push_back({"ann", rest[0] == "desktop", {}, {}});
        if (what == "user" && rest[1] != "?") w.conditions.sessions.back().agentIdle = std::stoi(rest[1]);
        if (what == "user" && rest[2] != "?") w.conditions.sessions.back().hintIdle = std::stoi(rest[2]);
        if (what == "since") w.conditions.sinceLastSession = number();
        if (what == "used") w.scheduler->used(w.now, "ann");
        if (what == "refuse") w.replies.assign(static_cast<std::size_t>(number()), PowerReply::kRefused);
        if (what == "busy") w.replies = {PowerReply::kUnderWay};
        if (what == "lies") w.lies = true;
        if (what == "deny") w.scheduler->sleepKindsDenied(w.now, {SleepKind::kHibernate});
        if (what == "faults") w.note(std::to_string(w.scheduler->faults().size()) + " faults");
        if (what == "silent") w.silent = true;
        if (what == "silent-no") w.silent = false;
        if (what == "long") w.actionLasts = kHour;
        if (what == "log") {
            std::string told = "told";
            for (const Value& one : w.scheduler->outcomes()) told += " " + one["Code"].text();
            w.note(told);
        }
        if (what == "mute") w.answers = false;
        if (what == "near") w.farAlarms = false;
        if (what == "loses") w.loses = true;
        if (what == "lonely") w.lonely = true;
        if (what == "company") w.lonely = false, w.scheduler->agentCame(w.now);
        if (what == "lid") w.lid = {true, first == "powered"};
        if (what == "unplug") w.scheduler->lidSeen(w.now, {true, false});
        if (what == "full") w.full = true;
        if (what == "space") w.full = false;
        if (what == "unset") w.now.synchronised = false;
        if (what == "synced") w.now.synchronised = true, w.setClock(number());
        if (what == "asleep")
            w.scheduler->goingToSleep(w.now, w.lid), w.pass(number(), false), w.scheduler->tick(w.now);
        if (what == "word") w.scheduler->resumed(w.now, w.lid);
        if (what == "wake") w.wakenAt = timeOf(first);
        if (what == "sleep") w.wakenAt = first.empty() ? 0 : timeOf(first), w.sleep();
        if (what == "bag")
            w.scheduler->goingToSleep(w.now, {}), w.pass(number(), false), w.scheduler->tick(w.now),
                w.scheduler->resumed(w.now, w.lid = {true, false});
        if (what == "off") w.off(number(), false, rest.size() > 1 ? std::stoll(rest[1]) : 0);
        if (what == "former") w.stored = storedBefore();
        if (what == "goes-down") w.scheduler->goingDown(w.now);
        if (what == "stored") {
            Value open = w.stored["Open"].array().at(0);
            w.stored = w.stored.with("Open", Array{open.with("Step", first)});
        }
        if (what == "cut") w.off(number(), true);
        if (what == "down") w.kill(), w.pass(number(), true), w.boot();
        if (what == "restore") w.now.wall = timeOf(first) * 1000, w.boot();
        if (what == "boot") w.boot();
        if (what == "kill") w.killAt = step.substr(5);
        if (what == "damage") w.stored = Dictionary{{"Version", 2}, {"Watermark", 5}};
        if (what == "hang") w.pass(number(), true), w.scheduler->tick(w.now);
        if (what == "pass") w.pass(number(), true);
        if (what == "set") w.setClock(number());
        if (what == "zone") setenv("TZ", first.c_str(), 1), w.scheduler->zoneChanged(w.now);
        if (what == "skip") says(w.scheduler->skip(w.now, token = w.token(), "ann"));
        if (what == "postpone") says(w.scheduler->postpone(w.now, token = w.token(), "ann"));
        if (what == "unskip") says(w.scheduler->unskip(w.now, token.empty() ? w.token() : token, "bob"));
        if (what == "later") says(w.scheduler->postpone(w.now, token = w.token(), "ann", number()));
        if (what == "try") {
            const auto trial = w.scheduler->tryNow(w.now, scheduleOf(first));
            if (!trial.fault.empty()) w.note("not tried: " + std::string(trial.fault));
        }
        if (what == "pause") {
            const auto time = [&](std::size_t i) { return i < rest.size() ? timeOf(rest[i]) : 0; };
            const std::string by = rest.size() > 2 ? rest[2] : "ann";
            const auto answer = w.scheduler->pause(w.now, {.from = time(0), .until = time(1), .by = by});
            if (!answer.fault.empty()) w.note("no pause: " + std::string(answer.fault));
        }
        if (what == "pauses") {
            std::string told = "pauses";
            for (const Pause& one : w.scheduler->pauses().standing(w.now.instant()))
                told += " " + VirtualWorld::clock(one.from) + "-" + VirtualWorld::clock(one.until) + "=" +
                        std::to_string(one.count);
            w.note(told);
        }
        if (what == "resume") {
            std::string paused = first == "all" ? "" : "none";
            for (const Pause& one : w.scheduler->pauses().standing(w.now.instant()))
                if (first != "all" && one.from == timeOf(first)) paused = one.token();
            says(w.scheduler->resume(w.now, paused));
        }
        if (what == "skip-again") says(w.scheduler->skip(w.now, token, "bob"));
        if (what == "postpone-again") says(w.scheduler->postpone(w.now, token, "bob"));
        if (what == "skip-name")
            says(w.scheduler->skip(w.now, first, "ann") || w.scheduler->postpone(w.now, first, "ann"));
        if (what == "next") w.note(std::string(nameOf(w.scheduler->upcoming(1)[0].step)));
        if (what == "ticks") w.note(std::to_string(w.ticks) + " ticks");
        if (what == "alarms") {
            const auto text = [](auto alarm) { return alarm ? VirtualWorld::clock(*alarm) : "none"; };
            w.note("alarms " + text(w.wakeAlarm) + ", " + text(w.startupAlarm));
        }
    }
}

struct Row {
    const char* rule;
    const char* script;
    const char* log;
};

// clang-format off
const Row kRows[] = {
    // Sleep and shut-down.
    {"at its minute, after a minute's warning", "from 22:50 Sleep@23:00; wake 23:40; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:40 awake; 23:40 slept Sleep 23:00"},
    {"just saved: the whole minute passes", "from 22:59:30 Sleep@23:00; until 23:00", "22:59:30 warn, for 23:00:30"},
    {"woken for nothing else", "from 10:00 Sleep@23:00 Plain@12:00; until 22:59:59; ticks",
     "12:00 start Plain; 12:00:10 ran Plain 12:00; 22:59 warn, for 23:00; 22:59:59 2 ticks"},
    {"restart", "from 22:50 ShutDown@23:00/restart; until 23:50",
     "22:59 warn, for 23:00; 23:00 restart; 23:00 shut-down ShutDown 23:00 Restart"},
    {"waits for an inhibitor, then warns", "apt; from 22:50 Sleep@23:00; until 23:05:30; free; until 23:06:59", "23:06 warn, for 23:07"},
    {"an inhibitor for half an hour; what it says forges nothing", "apt; from 22:50 Sleep@23:00; until 23:50",
     "23:30 gave-up Sleep 23:00 inhibitor 30 apt\uFFFD \uFFFD[1mup\uFFFD"},
    {"somebody's scheduled shut-down", "poweroff; from 22:50 Sleep@23:00; until 23:50", "23:30 gave-up Sleep 23:00 shutdown 30 poweroff"},
    {"nobody tells", "mute; from 22:50 Sleep@23:00; until 23:50", "23:31 gave-up Sleep 23:00 unknown 31 no-answer"},
    {"an inhibitor that comes during the warning", "from 22:50 Sleep@23:00; until 22:59:30; apt; until 23:00:30; free; until 23:01:30",
     "22:59 warn, for 23:00; 23:01 warn, for 23:02"},
    {"refused once", "refuse 1; from 22:50 Sleep@23:00; wake 23:40; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:00 suspend; 23:40 awake; 23:40 slept Sleep 23:00"},
    {"refused twice", "refuse 2; from 22:50 Sleep@23:00; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:00 suspend; 23:00 refused Sleep 23:00 busy"},
    {"yes without sleep", "lies; from 22:50 Sleep@23:00; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:00 suspend; 23:00 refused Sleep 23:00 stayed-awake"},
    {"yes without sleep, and without a word", "lies; silent; from 22:50 Sleep@23:00; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:01:30 suspend; 23:03 refused Sleep 23:00 stayed-awake"},
    {"back without a word", "silent; from 22:50 Sleep@23:00; wake 23:40; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:40 awake; 23:41:30 slept Sleep 23:00"},
    {"yes, and then nothing", "lies; from 22:50 ShutDown@23:00; until 23:50",
     "22:59 warn, for 23:00; 23:00 shut down; 23:01 shut down; 23:02 refused ShutDown 23:00 no-answer"},
    {"one is under way", "busy; from 22:50 Sleep@23:00; until 23:50",
     "22:59 warn, for 23:00; 23:00 suspend; 23:00 overtaken Sleep 23:00 other"},
    {"each kind is asked for, and takes its time",
     "lies; from 22:50 Sleep@21:00/hibernate Sleep@23:00/suspend-then-hibernate Sleep@23:20/system; until 23:19:30; silent; until 23:24:59",
     "22:59 warn, for 23:00; 23:00 suspend, then hibernate; 23:00 suspend, then hibernate; 23:00 refused Sleep 23:00 stayed-awake; "
     "23:19 warn, for 23:20; 23:20 sleep somehow"},
    {"a kind that is denied is a fault, and refused at its minute; nobody is warned",
     "from 22:50 Sleep@23:00/hibernate Sleep@23:30; deny; faults; until 23:29; skip",
     "22:50 cannot-run Sleep 1 denied; 22:50 1 faults; 23:00 refused Sleep 23:00 kind-denied; 23:29 warn, for 23:30"},
    {"no kind of that name", "from 22:50 Sleep@23:00/snooze; until 23:30", "22:50 cannot-run Sleep 1 kind"},
    {"the computer sleeps meanwhile", "from 22:50 Sleep@23:00; until 22:59:30; sleep 22:59:50; until 23:30",
     "22:59 warn, for 23:00; 22:59:30 overtaken Sleep 23:00 sleep; 22:59:50 awake"},
    {"a shut-down waits over a nap, but not over two minutes",
     "apt; from 22:50 ShutDown@23:00; until 23:05:30; sleep 23:07; until 23:07:30; sleep 23:20; until 23:30",
     "23:07 awake; 23:20 awake; 23:20 missed ShutDown 23:00 asleep 1"},
    {"a shut-down that is announced begins anew after a nap", "from 22:59 ShutDown@23:00; until 22:59:30; sleep 23:00:40; until 23:02",
     "22:59 warn, for 23:00; 23:00:40 awake; 23:00:40 warn, for 23:01:40; 23:01:40 shut down; 23:01:40 shut-down ShutDown 23:00"},
    {"also one that was called", "lies; from 22:59 ShutDown@23:00; until 23:00; asleep 40; word; until 23:01:39",
     "22:59 warn, for 23:00; 23:00 shut down; 23:00:40 warn, for 23:01:40"},
    {"asleep before its minute and over it: missed once", "from 22:50 ShutDown@23:00; until 22:59:30; sleep 23:10; until 23:30",
     "22:59 warn, for 23:00; 23:10 awake; 23:10 missed ShutDown 23:00 asleep 1"},
    {"down meanwhile", "from 22:59 ShutDown@23:00 Sleep@23:00; off 600; until 23:30",
     "22:59 warn, for 23:00; 22:59 overtaken ShutDown 23:00 down; 23:09 missed Sleep 23:00 off 1"},

    // Only when idle.
    {"waits for it, as long as the agent says",
     "user desktop 0 900; from 22:50 Sleep@23:00/idle; until 1+00:59:30; free; user desktop 900 0; user text ? 900; until 1+01:00:59",
     "+1 01:00 warn, for +1 01:01"},
    {"where logind cannot tell it is in use", "user desktop 900 ?; user text 900 ?; from 22:50 Sleep@23:00/idle; until 1+12:00",
     "+1 11:00 gave-up Sleep 23:00 use 720 ann untold"},
    {"nobody there, not long enough", "since 899; from 22:50 Sleep@23:00/idle; until 23:10:30; since 900; until 23:11:30",
     "23:11 warn, for 23:12"},
    {"ends with the next wake-up; the ten minutes hold", "user text ? 0; from 22:50 Sleep@23:00/idle WakeUp@7:00; until 1+08:00",
     "+1 07:00 gave-up Sleep 23:00 use 480 ann; +1 07:00 awake-already WakeUp +1 07:00; +1 07:00 keep awake; +1 07:10 let sleep"},
    {"ends with the next sleep", "user text ? 0; from 22:50 Sleep@23:00/idle Sleep@23:30; until 23:29:30",
     "23:29 gave-up Sleep 23:00 use 29 ann; 23:29 warn, for 23:30"},
    {"input during the warning", "since 900; from 22:50 Sleep@23:00/idle; until 22:59:30; used; until 23:01:29",
     "22:59 warn, for 23:00; 23:00:30 warn, for 23:01:30"},
    {"graphics that were started at a text log-in", "user text 5 3600; from 22:50 Sleep@23:00/idle; until 23:00; next", "23:00 waiting"},
    {"input does not matter to others", "from 22:59 Sleep@23:00; used; until 22:59:59", "22:59 warn, for 23:00"},

    // Several at one minute.
    {"wake-ups, actions in list order, one shut-down when they have ended",
     "from 11:50 Sleep@12:00 Plain2@12:00 WakeUp@12:00 Plain@12:00 ShutDown@12:00 ShutDown@12:00/restart; until 12:05",
     "11:59 warn, for 12:00; 12:00 awake-already WakeUp 12:00; 12:00 start Plain2; 12:00 start Plain; 12:00 same-minute ShutDown 12:00; "
     "12:00 wakes-then Sleep 12:00; 12:00 keep awake; 12:00:10 ran Plain2 12:00; 12:00:10 ran Plain 12:00; "
     "12:00:10 warn, for 12:01:10; 12:01:10 shut down; 12:01:10 shut-down ShutDown 12:00"},
    {"equal Schedules run once, on the days of all", "from 11:50 Plain@12:00/thursday Plain@12:00; until 12:05",
     "12:00 start Plain; 12:00:10 ran Plain 12:00"},
    {"what was skipped displaces nothing", "from 6:00 WakeUp@7:00 Sleep@7:00; skip; wake 8:00; until 7:00",
     "06:59 warn, for 07:00; 07:00 skipped WakeUp 07:00 ann; 07:00 suspend; 08:00 awake; 08:00 slept Sleep 07:00"},
    {"also when it is skipped late", "from 6:58 ShutDown@7:00 Sleep@7:00; until 6:59:30; skip; until 7:00:29",
     "06:59 warn, for 07:00; 06:59:30 warn, for 07:00:30; 07:00 skipped ShutDown 07:00 ann"},

    // A wake-up and what it meets.
    {"ends an idle sleep that is announced", "user text ? 0; from 22:50 Sleep@23:00/idle WakeUp@7:00; until 1+06:58:30; free; since 900; until 1+07:05",
     "+1 06:59 warn, for +1 07:00; +1 07:00 overtaken Sleep 23:00 next; +1 07:00 awake-already WakeUp +1 07:00; +1 07:00 keep awake"},
    {"ends a sleep that was postponed into its ten minutes", "from 6:46:30 Sleep@6:47 WakeUp@7:00; postpone; until 7:20",
     "06:46:30 warn, for 06:47:30; 07:00 overtaken Sleep 06:47 next; 07:00 awake-already WakeUp 07:00; 07:00 keep awake; 07:10 let sleep"},
    {"ends a sleep that comes late from before it", "from 15:50 Sleep@16:00 WakeUp@16:01; sleep; until 16:05",
     "16:01 awake; 16:01 overtaken Sleep 16:00 next; 16:01 woke-up WakeUp 16:01; 16:01 keep awake"},
    {"leaves a sleep that is planned after it", "from 6:50 WakeUp@7:00 Sleep@7:01; wake 8:00; until 7:30",
     "07:00 awake-already WakeUp 07:00; 07:00 keep awake; 07:00 warn, for 07:01; 07:01 suspend; 08:00 awake; 08:00 slept Sleep 07:01; 08:00 let sleep"},
    {"leaves a shut-down of its minute, and that has one outcome", "apt; from 6:50 WakeUp@7:00 ShutDown@7:00; until 7:05:30; free; until 7:20",
     "07:00 awake-already WakeUp 07:00; 07:00 keep awake; 07:06 warn, for 07:07; 07:07 shut down; 07:07 shut-down ShutDown 07:00; 07:10 let sleep"},
    {"saved into the minute of a sleep that is announced", "from 23:05 Sleep@23:10; until 23:09:30; save Sleep@23:10 WakeUp@23:10; until 23:11",
     "23:09 warn, for 23:10; 23:10 overtaken Sleep 23:10 next; 23:10 awake-already WakeUp 23:10; 23:10 keep awake"},
    {"no sleep is called when it is near", "from 6:58:40 Sleep@6:59 WakeUp@7:00; until 6:59:59",
     "06:58:40 warn, for 06:59:40; 06:59:40 overtaken Sleep 06:59 next"},

    // A sleep or shut-down and another.
    {"a firm one is not ended by one that asks for idleness", "apt; since 900; from 22:50 Sleep@23:00 ShutDown@23:10/idle; until 23:15:30; free; until 23:16:30",
     "23:09 overtaken ShutDown 23:10 first; 23:16 warn, for 23:17"},

    // Missed.
    {"two minutes late", "from 11:50 Plain@12:00; sleep 12:02; until 12:05", "12:02 awake; 12:02 start Plain; 12:02:10 ran Plain 12:00"},
    {"later", "from 11:50 Plain@12:00; sleep 12:02:01; until 12:05", "12:02:01 awake; 12:02:01 missed Plain 12:00 asleep 1"},
    {"a sleep is never made up", "from 11:50 Sleep@12:00; sleep 12:03; until 14:00", "12:03 awake; 12:03 missed Sleep 12:00 asleep 1"},
    {"an action, where its module allows it", "from 11:50 Late@12:00; sleep 13:00; until 14:00",
     "13:00 awake; 13:02 start Late; 13:02:10 ran Late 12:00 MadeUp"},
    {"but not for ever", "from 11:50 Late@12:00; sleep 13:00:01; until 14:00", "13:00:01 awake; 13:00:01 missed Late 12:00 asleep 1"},
    {"one after the other", "from 11:50 Late@12:00 Late2@12:01; sleep 12:30; until 12:33",
     "12:30 awake; 12:32 start Late; 12:32:10 ran Late 12:00 MadeUp; 12:32:10 start Late2; 12:32:20 ran Late2 12:01 MadeUp"},
    {"for nobody: once somebody has come", "lonely; from 11:50 Late@12:00; until 12:30; next; company; until 13:01",
     "12:00 start Late; 12:30 awaited; 12:30:10 start Late; 12:30:20 ran Late 12:00 MadeUp"},
    {"but not for ever either", "lonely; from 11:50 Late@12:00/wake Plain@12:00; until 12:30; alarms; down 0; until 14:00; company",
     "12:00 start Late; 12:00 start Plain; 12:00:10 not-started Plain 12:00 nobody; 12:30 alarms +1 11:59:30, none; "
     "13:00 not-started Late 12:00 nobody"},
    {"off: one entry a Schedule, the last made up", "from 11:50 Plain@12:00 Late@12:00; cut 174000; until 2+13:00",
     "+2 12:10 missed Late +1 12:00 off 2; +2 12:10 missed Plain +2 12:00 off 3; +2 12:12 start Late; "
     "+2 12:12:10 ran Late +2 12:00 MadeUp"},
    {"the daemon was down", "from 11:50 Plain@12:00; down 1200", "12:10 missed Plain 12:00 daemon 1"},
    {"the program hung", "from 11:50 Plain@12:00; hang 1200", "12:10 missed Plain 12:00 late 1"},

    // Waking and starting.
    {"woken, and kept awake", "from 6:00 WakeUp@7:00; sleep; until 8:00",
     "07:00 awake; 07:00 woke-up WakeUp 07:00; 07:00 keep awake; 07:10 let sleep"},
    {"half a minute early for an action", "from 6:00 Plain@7:00/wake; sleep; until 7:00:05", "06:59:30 awake; 06:59:30 keep awake; 07:00 start Plain"},
    {"started from off", "from 6:00 WakeUp@7:00/start; alarms; off 3500; until 7:05",
     "06:00 alarms 07:00, 06:58; 07:00 started WakeUp 07:00; 07:00 keep awake"},
    {"sleep wakes and starts nothing", "from 6:00 Sleep@7:00/wake/start; alarms", "06:00 alarms none, none"},
    {"a closed lid on battery is not woken", "lid; from 6:00 WakeUp@7:00; sleep 7:30; until 8:00",
     "07:30 awake; 07:30 missed WakeUp 07:00 asleep 1"},
    {"closed while it slept: back to sleep", "from 6:00 WakeUp@7:00; bag 3600; wake 9:00; until 9:30",
     "07:00 lid-closed WakeUp 07:00; 07:00:20 back-to-sleep; 07:00:20 suspend; 09:00 awake"},
    {"stepping stones, and input on one", "near; from 12:00 WakeUp@7:00/thursday; sleep; until 1+11:01; used; until 2+12:00",
     "+1 11:00 awake; +1 11:00:20 back-to-sleep; +1 11:00:20 suspend; +2 10:00:20 awake"},

    {"a stepping stone, and no word of the waking", "near; silent; from 12:00 WakeUp@7:00/thursday; sleep; until 1+11:02; silent-no",
     "+1 11:00 awake; +1 11:01:50 back-to-sleep; +1 11:01:50 suspend; +2 10:01:50 awake"},
    {"a step of the clock between waking and the word of it", "from 6:00 WakeUp@7:00; asleep 3600; lid; set 1; word; wake 9:00; until 7:00:30",
     "07:00:01 lid-closed WakeUp 07:00; 07:00:21 back-to-sleep; 07:00:21 suspend; 09:00 awake"},
    {"a closed lid, on external power, until it is unplugged", "lid powered; from 6:00 WakeUp@7:00; sleep; until 7:03; unplug; until 7:20",
     "07:00 awake; 07:00 hold lid; 07:00 woke-up WakeUp 07:00; 07:00 keep awake; 07:03 let lid; 07:10 let sleep"},
    {"a closed lid, woken by hand", "lid powered; from 6:00 WakeUp@7:00; sleep 6:59; until 7:01", "06:59 awake; 07:00 awake-already WakeUp 07:00; 07:00 keep awake"},
    {"the lid is not held for ever", "lid powered; long; from 6:00 Plain@7:00/wake; sleep; until 9:00",
     "06:59:30 awake; 06:59:30 hold lid; 06:59:30 keep awake; 07:00 start Plain; 07:29:30 let lid; 08:00 ran Plain 07:00; 08:00 let sleep"},
    {"woken for a long action: at rest meanwhile", "long; from 6:00 Plain@7:00/wake; sleep; until 7:30; ticks",
     "06:59:30 awake; 06:59:30 keep awake; 07:00 start Plain; 07:30 2 ticks"},
    {"two nights", "from 22:50 Sleep@23:00 WakeUp@7:00; until 2+07:00",
     "22:59 warn, for 23:00; 23:00 suspend; +1 07:00 awake; +1 07:00 slept Sleep 23:00; +1 07:00 woke-up WakeUp +1 07:00; +1 07:00 keep awake; +1 07:10 let sleep; "
     "+1 22:59 warn, for +1 23:00; +1 23:00 suspend; +2 07:00 awake; +2 07:00 slept Sleep +1 23:00; +2 07:00 woke-up WakeUp +2 07:00; +2 07:00 keep awake"},
    {"the start-up alarm is away in sleep", "from 6:00 WakeUp@7:00/start; asleep 60; alarms; word; alarms; goes-down; alarms",
     "06:01 alarms 07:00, none; 06:01 alarms 07:00, 06:58; 06:01 alarms 07:00, 06:58"},
    {"but stays for a sleep that may write the memory to disk, and ends it two minutes early",
     "from 6:00 Sleep@6:30/hibernate WakeUp@6:50 WakeUp@7:00/start; until 7:05",
     "06:29 warn, for 06:30; 06:30 hibernate; 06:58 awake; 06:58 slept Sleep 06:30; 06:58 missed WakeUp 06:50 asleep 1; 06:58 keep awake; 07:00 woke-up WakeUp 07:00"},
    {"after a skipped wake-up the next day's", "from 6:00 WakeUp@7:00; skip; alarms", "06:00 alarms +1 07:00, none"},

    {"input since a stepping stone, as the agent says",
     "near; from 12:00 WakeUp@7:00/thursday; sleep; user desktop 14 ?; until 1+12:00", "+1 11:00 awake"},

    // Staying awake.
    {"taken up late, never missed before its end", "from 7:00 StayAwake@8:00/17:00; off 7200; next; until 17:05",
     "09:00 keep awake; 09:00 running; 17:00 kept-awake StayAwake 08:00; 17:00 let sleep"},
    {"missed when nothing of it is left", "from 7:00 StayAwake@8:00/9:00; off 7200; until 17:00", "09:00 missed StayAwake 08:00 off 1"},
    {"a planned sleep comes; it holds over that and over a restart",
     "from 7:59 StayAwake@8:00/17:00 Sleep@9:00; wake 10:00; until 11:00; down 60; until 17:05",
     "08:00 keep awake; 08:59 warn, for 09:00; 09:00 suspend; 10:00 awake; 10:00 slept Sleep 09:00; 11:01 keep awake; "
     "17:00 kept-awake StayAwake 08:00; 17:00 let sleep"},
    {"slept past its end; what follows a wake-up ends later", "from 7:59 StayAwake@8:00/9:30 WakeUp@9:25; until 8:10; wake 9:20; sleep 9:20; until 10:00",
     "08:00 keep awake; 09:20 awake; 09:25 awake-already WakeUp 09:25; 09:30 kept-awake StayAwake 08:00; 09:35 let sleep"},
    {"dropped by a save, and what is saved within its time begins the next time",
     "from 7:59 StayAwake@8:00/17:00; until 9:00; save WakeUp@7:00 StayAwake@8:00/17:00; until 9:10; save; save StayAwake@8:00/17:00; until 10:00",
     "08:00 keep awake; 09:10 kept-awake StayAwake 08:00; 09:10 let sleep"},
    {"several, until the last; over midnight; skipped, not postponed",
     "from 21:59 StayAwake@22:00/6:00 StayAwake@23:00/23:30; until 23:40; postpone; skip; until 1+05:00",
     "22:00 keep awake; 23:30 kept-awake StayAwake 23:00; 23:40 no such; 23:40 kept-awake StayAwake 22:00 ann; 23:40 let sleep"},
    {"an end that is none", "from 7:59 StayAwake@8:00/08:00 StayAwake@9:00/25:00; until 10:00",
     "07:59 cannot-run StayAwake 1 until; 07:59 cannot-run StayAwake 2 until"},
    {"the clock is corrected: until the end of that day, if it is within its time",
     "from 7:59 StayAwake@8:00/17:00; until 12:00; set 86400; set 25200; until 1+20:00",
     "08:00 keep awake; +1 12:00 correction 86400; +1 19:00 kept-awake StayAwake +1 08:00; +1 19:00 correction 25200; +1 19:00 let sleep"},

    // Lists and zones.
    {"saved in its own minute: next time", "from 11:50; until 12:00:20; save Plain@12:00; until 1+12:00", "+1 12:00 start Plain"},
    {"what the old one had due comes first", "from 11:50 Plain@12:00; pass 600; save", "12:00 start Plain"},
    {"withdrawn while it runs: it waits for nobody afterwards", "lonely; from 11:50 Late@12:00; until 12:00:05; save Plain@13:00; until 12:30",
     "12:00 start Late; 12:00:10 withdrawn Late 12:00"},
    {"withdrawn while warned", "from 22:59 Sleep@23:00; save WakeUp@7:00; until 23:30",
     "22:59 warn, for 23:00; 22:59 withdrawn Sleep 23:00"},
    {"the same Schedule written otherwise stays, while it waits",
     "apt; from 22:50 Sleep@23:00; until 23:05:30; save WakeUp@7:00 Sleep@23:00/text; free; until 23:06:30", "23:06 warn, for 23:07"},
    {"what runs is not withdrawn", "from 11:59 Plain@12:00; until 12:00:05; save; until 12:01",
     "12:00 start Plain; 12:00:10 ran Plain 12:00"},
    {"the zone is followed, and nothing made up", "from 10:00 Plain@12:00 Plain2@20:00; zone Asia/Tokyo; until 1+03:00",
     "11:00 start Plain2; 11:00:10 ran Plain2 11:00; +1 03:00 start Plain"},
    {"the zone's earlier minutes do not come", "from 5:00 Plain@12:00; zone Asia/Tokyo; until 1+03:00", "+1 03:00 start Plain"},
    {"saved between waking and the word of it: what was due comes first", "from 11:50 Plain@12:00; asleep 900; save Plain2@12:06; word; until 12:06",
     "12:05 missed Plain 12:00 asleep 1; 12:06 start Plain2"},
    {"a zone, too", "from 11:50 Plain@12:00; asleep 900; zone Asia/Tokyo; word", "12:05 missed Plain 12:00 asleep 1"},
    {"a day is unticked while it waits", "apt; from 22:50 Sleep@23:00; until 23:05; save Sleep@23:00/thursday", "23:05 withdrawn Sleep 23:00"},
    {"what the system is doing is not withdrawn", "lies; from 22:59 ShutDown@23:00; until 23:00:10; save; until 23:05",
     "22:59 warn, for 23:00; 23:00 shut down; 23:01 shut down; 23:02 refused ShutDown 23:00 no-answer"},
    {"what cannot run is said once", "from 10:00 Sleep@24:00 Nothing@1:00 Empty@1:00 Sleep@1:60; save Sleep@24:00 Nothing@1:00; until 1+10:00",
     "10:00 cannot-run Sleep 1 hour; 10:00 cannot-run Nothing 2 action; 10:00 cannot-run Empty 3 program; 10:00 cannot-run Sleep 4 minute"},

    // The clock.
    {"back by less than three hours: not again", "from 11:50 Plain@12:00; until 12:30; set -10740; until 13:00",
     "12:00 start Plain; 12:00:10 ran Plain 12:00"},
    {"back by three hours: a correction", "from 11:50 Plain@12:00; until 12:30; set -10800; until 12:00:05",
     "12:00 start Plain; 12:00:10 ran Plain 12:00; 09:30 correction -10800; 12:00 start Plain"},
    {"back twice, and three hours behind: a correction", "from 11:50 Plain@12:00; until 12:30; set -7200; set -7200; until 12:00:05",
     "12:00 start Plain; 12:00:10 ran Plain 12:00; 08:30 correction -7200; 12:00 start Plain"},
    {"on, and back again", "from 11:00 Plain@12:00; set 10740; set -10740; until 13:00", "13:59 missed Plain 12:00 clock 1"},
    {"on by a day", "from 11:00 Plain@12:00; set 86400; until 1+12:00:05", "+1 11:00 correction 86400; +1 12:00 start Plain"},
    {"a second to and fro", "from 11:59:59 Plain@12:00; set 1; set -1; until 12:01", "12:00 start Plain; 12:00:10 ran Plain 12:00"},
    {"back during a warning: again in its time", "from 22:59:30 Sleep@23:00; set -3600; until 22:59:30",
     "22:59:30 warn, for 23:00:30; 22:59 warn, for 23:00"},
    {"on over a warning: its seconds go on", "from 22:59 Sleep@23:00; set 3600; wake 1+00:30; until 1+00:30",
     "22:59 warn, for 23:00; +1 00:00 suspend; +1 00:30 awake; +1 00:30 slept Sleep 23:00"},
    {"waiting goes on", "poweroff; from 22:50 Sleep@23:00; until 23:20; set -7200; until 23:00",
     "21:30 gave-up Sleep 23:00 shutdown 30 poweroff"},
    {"back, and then missed before its minute", "apt; from 22:50 ShutDown@23:00; until 23:20; set -7200; sleep 21:40; until 23:30",
     "21:40 awake; 21:40 missed ShutDown 23:00 asleep 1"},
    {"its time, once reached, does not come again", "apt; from 22:50 Sleep@23:00; until 23:20; set -7200; free; set 1; until 21:22",
     "21:21:01 warn, for 21:22:01"},
    {"open ones end with a correction", "from 22:59 Sleep@23:00; set -10800; until 22:59:30",
     "22:59 warn, for 23:00; 19:59 clock-corrected Sleep 23:00; 19:59 correction -10800; 22:59 warn, for 23:00"},
    {"back during a wait, and a restart", "apt; from 22:50 Sleep@23:00; until 23:10; set -3600; free; down 0; until 22:10:59", "22:10 warn, for 22:11"},

    // A clock that is not to be trusted yet.
    {"dead battery: nothing for ten minutes, and the alarms that stand are left",
     "from 12:30 Plain@12:00 WakeUp@7:00; unset; restore 6:55; alarms; set 1; goes-down; until 7:05:01; alarms; until 12:00:05",
     "06:55 clock-behind 20100; 06:55 alarms +1 07:00, none; 07:05:01 correction 0; 07:05:01 alarms +1 07:00, none; 12:00 start Plain"},
    {"dead battery, the clock set: as if it had started then", "from 11:00 Plain@11:20 Late@12:00; skip; unset; restore 6:00; until 6:05; set 23400; until 12:37:05; log",
     "06:00 clock-behind 18000; 12:35 skipped Plain 11:20 ann; 12:37 start Late; 12:37:05 told clock-behind skipped"},
    {"dead battery, the ten minutes of an earlier wake-up",
     "from 6:50 WakeUp@7:00; until 7:05; unset; restore 2:00; set 93600; until 1+7:00",
     "07:00 awake-already WakeUp 07:00; 07:00 keep awake; 02:00 clock-behind 18000; +1 07:00 awake-already WakeUp +1 07:00; +1 07:00 keep awake"},
    {"nobody sets it", "from 6:00 WakeUp@7:00/start; unset; off 3500; until 7:00", "07:00 started WakeUp 07:00; 07:00 keep awake"},
    {"90 s ahead", "from 6:00 WakeUp@7:00/start; unset; off 3500 90; until 7:01; synced -90; until 7:00",
     "07:00:30 started WakeUp 07:00; 07:00:30 keep awake"},
    {"90 s behind", "from 6:00 WakeUp@7:00/start; unset; off 3500 -90; until 6:57; synced 90; until 7:00", "07:00 started WakeUp 07:00; 07:00 keep awake"},
    {"200 s ahead, set at once", "from 6:00 WakeUp@7:00/start; unset; off 3500 200; until 7:01:50; synced -200; until 7:00",
     "07:00 started WakeUp 07:00; 07:00 keep awake"},
    {"200 s ahead, set later: what ran stays so, what was missed comes again",
     "from 6:00 WakeUp@7:00/start Sleep@6:59/thursday Plain@7:01; unset; off 3500 200; save WakeUp@7:00/start Plain@7:01 Plain2@7:05; until 7:03; synced -200; until 7:01:05; until 7:05",
     "07:02:20 started WakeUp 07:00; 07:02:20 start Plain; 07:02:20 keep awake; 07:02:30 ran Plain 07:01; 06:59:40 correction -200; 07:05 start Plain2"},
    {"200 s behind", "from 6:00 WakeUp@7:00/start; unset; off 3500 -200; until 6:57; synced 200; until 7:00:30", "07:00:20 started WakeUp 07:00; 07:00:20 keep awake"},
    {"two hours ahead: across such a start a skip stays, and what may be made up is",
     "from 6:00 Plain@6:20 Late@6:30 WakeUp@7:00/start; skip; unset; off 3500 7200; until 8:58:30; synced -7200; until 7:00:35",
     "06:58:30 skipped Plain 06:20 ann; 07:00 started WakeUp 07:00; 07:00 keep awake; 07:00:30 start Late"},
    {"two hours ahead, set later", "from 6:00 WakeUp@7:00/start Plain@7:05 Late@7:06; unset; off 3500 7200; until 9:00; synced -7200; until 7:06",
     "08:59 missed WakeUp 07:00 off 1; 08:59 missed Plain 07:05 off 1; 08:59 missed Late 07:06 off 1; 07:00 correction -7200; "
     "07:05 start Plain; 07:05:10 ran Plain 07:05; 07:06 start Late"},
    {"two hours behind", "from 6:00 WakeUp@7:00/start Plain@5:30; unset; off 3500 -7200; until 4:58:40; synced 7200; until 7:00",
     "07:00 started WakeUp 07:00; 07:00 keep awake"},
    {"the kernel up after the minute", "from 6:00 WakeUp@7:00/start; unset; off 3650; until 7:02", "07:01:30 started WakeUp 07:00; 07:01:30 keep awake"},
    {"saved in the first minute: it counts from then on, and what was before it up to then", "from 6:00 Plain@6:09 Plain1@6:10; unset; off 580; save Plain2@6:10; until 6:11",
     "06:10:20 start Plain; 06:10:20 start Plain2; 06:10:30 ran Plain 06:09; 06:10:30 ran Plain2 06:10"},
    {"saved twice in the first minute, and the zone set", "from 6:00 Plain@6:10; unset; off 590; save; until 6:10:05; save Plain2@9:00; zone UTC; until 6:12", ""},
    {"down again in the first minute", "from 6:00 WakeUp@7:00/start; unset; off 600; goes-down; alarms", "06:10 alarms 07:00, 06:58"},
    {"set in the first minute: the start-up alarm stands right at once", "from 6:00 WakeUp@7:00/start; unset; off 600; set 600; alarms", "06:20 alarms 07:00, 06:58"},
    {"saved in the first minute: the alarms are already those of the new list",
     "from 6:00 WakeUp@7:00/start; unset; off 600; save WakeUp@8:00/start; alarms; goes-down; alarms", "06:10 alarms 08:00, 07:58; 06:10 alarms 08:00, 07:58"},
    {"a sleep of before the boot does not run", "from 22:50 Sleep@23:00; off 660; until 23:05", "23:01 missed Sleep 23:00 off 1"},

    // Restarts.
    {"killed before the action is started", "kill start; loses; from 11:50 Plain@12:00; until 12:01; boot; until 12:05",
     "12:00 killed; 12:00 find Plain; 12:00 unknown Plain 12:00"},
    {"killed while it runs", "from 11:50 Plain@12:00; until 12:00:05; down 0; until 12:05",
     "12:00 start Plain; 12:00:05 find Plain; 12:00:10 ran Plain 12:00"},
    {"killed after it has run", "from 11:50 Plain@12:00; until 12:00:30; down 0; until 12:05", "12:00 start Plain; 12:00:10 ran Plain 12:00"},
    {"killed before its minute", "from 11:59:59 Plain@12:00; down 1", "12:00 start Plain"},
    {"killed as it falls asleep", "kill suspend; from 22:50 Sleep@23:00; until 23:01; boot; until 23:30",
     "22:59 warn, for 23:00; 23:00 killed; 23:00 unknown Sleep 23:00"},
    {"a warning begins anew", "from 22:59 Sleep@23:00; down 90", "22:59 warn, for 23:00; 23:00:30 warn, for 23:01:30"},
    {"what waits goes on", "poweroff; from 22:50 Sleep@23:00/thursday; until 3+23:05; down 600; until 3+23:40",
     "+3 23:30 gave-up Sleep +3 23:00 shutdown 30 poweroff"},
    {"but not on the next morning", "user text ? 0; from 22:50 Sleep@23:00/idle; until 23:05; cut 28800",
     "+1 07:05 missed Sleep 23:00 off 1"},
    {"what waits for idleness and then for a program keeps its patience",
     "user text ? 0; from 22:50 Sleep@23:00/idle; until 23:20; free; since 900; apt; until 23:40; down 0; until 1+00:30", "23:51 gave-up Sleep 23:00 inhibitor 51 apt\uFFFD \uFFFD[1mup\uFFFD"},
    {"a step that cannot be", "from 11:59 Plain@12:00; until 12:00:05; stored warned; boot", "12:00 start Plain; 12:00:05 unknown Plain 12:00"},
    {"a step that another version wrote", "apt; from 22:50 Sleep@23:00 Plain@12:00; until 23:05; stored frozen; boot; until 1+12:00",
     "23:05 unknown Sleep 23:00; +1 12:00 start Plain"},

    {"what version 1.0 stored", "apt; former; from 12:05:30 Late@11:30 Plain3@12:00 Sleep@12:04 Plain@13:00 Plain2@13:10; company; until 13:25",
     "12:05:30 find Plain3; 12:05:40 start Late; 12:05:50 ran Late 11:30 MadeUp; 12:34:30 gave-up Sleep 12:04 action 30 com.quorel.plugin.Plain3; "
     "13:00 skipped Plain 13:00 ann; 13:25 start Plain2"},

    // Tried now.
    {"an action, and none that wakes up or makes no sense", "from 11:00; try Plain@12:00; try WakeUp@12:00; try Nothing@12:00; save; until 11:01",
     "11:00 start Plain; 11:00 not tried: wake-up; 11:00 not tried: action; 11:00:10 ran Plain 11:00"},
    {"beside the plan's own of that very second; staying awake until the next such time",
     "from 11:59 Plain@12:00; until 12:00; try Plain@12:00; try StayAwake@8:00/9:00; next; until 1+09:00",
     "12:00 start Plain; 12:00 start Plain; 12:00 keep awake; 12:00 running; 12:00:10 ran Plain 12:00; 12:00:10 ran Plain 12:00; +1 09:00 kept-awake StayAwake 12:00; +1 09:00 let sleep"},
    {"a sleep, announced and held up as any other", "apt; from 11:00; try Sleep@23:00; try Sleep@23:00; until 11:02:30; free; wake 12:00; until 11:30",
     "11:00 not tried: not-now; 11:03 warn, for 11:04; 11:04 suspend; 12:00 awake; 12:00 slept Sleep 11:00"},

    // Pauses.
    {"nothing in it, and one entry of how many", "from 11:00 Plain@12:00 Late@13:00 Sleep@14:00 WakeUp@15:00 Plain1@16:00; pause 12:00 16:00; alarms; until 15:59; pauses; until 16:00:10",
     "11:00 alarms +1 15:00, none; 15:59 pauses 12:00-16:00=4; 16:00 start Plain1; 16:00 paused ann 4; 16:00:10 ran Plain1 16:00"},
    {"until tomorrow at five; none that ends before it begins, too far ahead, or a seventeenth; one person's by one right are joined where they overlap",
     "from 11:00; pause; pause; pauses; pause 12:00 12:00; pause 12:00 367+12:00; pause 1+04:00 1+05:30; pause 1+05:00 1+06:00; pause 2+00:00 2+01:00; pause 2+01:00 2+02:00; pauses; resume 11:00; resume 11:00; "
     "pause 3+00:00 3+01:00; pause 3+02:00 3+03:00; pause 3+04:00 3+05:00; pause 3+06:00 3+07:00; pause 3+08:00 3+09:00; pause 3+10:00 3+11:00; pause 3+12:00 3+13:00; "
     "pause 4+00:00 4+01:00; pause 4+02:00 4+03:00; pause 4+04:00 4+05:00; pause 4+06:00 4+07:00; pause 4+08:00 4+09:00; pause 4+10:00 4+11:00; "
     "pause 5+00:00 5+01:00",
     "11:00 pauses 11:00-+1 05:00=0; 11:00 no pause: past; 11:00 no pause: too-far; 11:00 pauses 11:00-+1 05:00=0 +1 04:00-+1 06:00=0 +2 00:00-+2 01:00=0 +2 01:00-+2 02:00=0; 11:00 no such; 11:00 no pause: too-many"},
    {"another's, or by another right, stands beside it and goes on when it ends", "from 11:00 Plain@12:00 Plain1@12:30 Sleep@13:00; pause; pause 11:30 12:30 root; pause 11:45 12:15; until 12:10; pauses; resume 11:00; pauses; until 12:59",
     "12:10 pauses 11:00-+1 05:00=1 11:30-12:30=0 11:45-12:15=0; 12:10 paused ann 1; 12:10 pauses 11:30-12:30=0 11:45-12:15=0; 12:30 start Plain1; 12:30:10 ran Plain1 12:30; 12:59 warn, for 13:00"},
    {"what is in course ends, what was asked for does not", "apt; from 22:50 Sleep@23:00; until 23:05; pause; down 5; free; until 1+05:00; log",
     "+1 05:00 paused ann 1; +1 05:00 told paused"},
    {"what runs goes on; nothing of the warning minute comes into course", "long; from 11:59 Plain@12:00 Sleep@12:30; until 12:05; pause 12:30 12:40; pause 12:31 12:40 bob; until 13:00",
     "12:00 start Plain; 12:40 paused ann 1; 13:00 ran Plain 12:00"},
    {"a skipped one ends and counts, a postponed one within it, too; the end itself is not within",
     "from 11:00 Plain@12:00 Plain1@12:30 Plain2@13:00; skip; until 12:01; skip; pause 12:10 13:00; until 12:11; pauses; until 13:00:10",
     "12:00 skipped Plain 12:00 ann; 12:11 pauses 12:10-13:00=0; 13:00 start Plain2; 13:00 paused ann 1; 13:00:10 ran Plain2 13:00"},
    {"a sleep at its end, and a postponed one soon after, are announced from its end on",
     "from 11:00 Sleep@12:00 Sleep@12:30; pause 11:00 12:00; until 12:00:30; skip; until 12:10; postpone; pause 12:15 12:44:40; wake 12:50; until 12:51",
     "12:00 warn, for 12:01; 12:00:30 skipped Sleep 12:00 ann; 12:44:40 warn, for 12:45:40; 12:45:40 suspend; 12:50 awake; 12:50 slept Sleep 12:30"},
    {"all ended at once: as if they had never been, as far as the time has not come",
     "from 11:00 Plain@11:30 Plain1@11:50 Sleep@12:00; postpone; pause; resume all; until 11:46; skip; pause; resume all; until 11:59:20; pause; pause 12:00 14:00; resume all; until 12:00:19",
     "11:45 start Plain; 11:45:10 ran Plain 11:30; 11:50 skipped Plain1 11:50 ann; 11:59 warn, for 12:00; 11:59:20 warn, for 12:00:20"},
    {"ended while the clock is not to be trusted, or between two sleeps: what was due in it counts",
     "from 11:00 Plain@11:30 Plain1@12:00 Plain2@12:41; pause; unset; off 3600 7200; resume 11:00; pauses; synced -7200; until 12:40; pause; asleep 120; resume all; word",
     "14:00 pauses; 12:00 start Plain1; 12:00 paused ann 1; 12:00:10 ran Plain1 12:00; 12:42 paused ann 1"},
    {"the clock is ahead when the computer starts: it ends when it does", "from 11:00 Plain@11:30 Plain1@12:30; pause 11:00 12:45; unset; off 3600 7200; until 14:02; pauses; synced -7200; until 12:45",
     "14:02 pauses; 12:02 correction -7200; 12:45 paused ann 2"},
    {"no stepping stone within it, nor just before", "near; from 10:00 WakeUp@23:30/thursday; pause 1+08:00 1+12:00; alarms; pause 2+00:00 3+23:00; until 2+00:10; alarms; sleep 3+00:31; alarms",
     "10:00 alarms +1 07:58:59, none; +2 00:10 alarms none, none; +3 00:31 awake; +3 00:31 alarms +3 23:30, none"},
    {"within the minute of a warning: announced anew from its end on, and at rest until then", "from 11:58 Sleep@12:00; until 11:59:20; pause 11:59:20 11:59:40; until 12:00:39; ticks",
     "11:59 warn, for 12:00; 11:59:40 warn, for 12:00:40; 12:00:39 3 ticks"},
    {"ended early: what is due in a minute is announced in full", "from 11:00 Plain@11:30 Sleep@12:00; pause; until 11:59:40; resume 11:00; until 12:00:30",
     "11:59:40 paused ann 1; 11:59:40 warn, for 12:00:40"},
    {"slept or off through it: paused, and only what was due beside it missed", "from 11:00 Plain@11:30 Plain@12:30 Late@12:50 Plain@13:30; pause 12:00 13:00; wake 14:00; sleep 14:00",
     "14:00 awake; 14:00 missed Plain 11:30 asleep 1; 14:00 missed Plain 13:30 asleep 1; 14:00 paused ann 2"},
    {"staying awake is let go until it ends", "from 9:00 StayAwake@10:00/17:00; until 11:00; pause 11:00 12:00; until 11:01; down 5; until 17:00",
     "10:00 keep awake; 11:00 let sleep; 12:00 keep awake; 17:00 kept-awake StayAwake 10:00; 17:00 let sleep"},
    {"what waits for somebody waits on where it may still run afterwards", "lonely; from 10:59 Late@11:00; until 11:01; pause 11:01 11:30; until 11:02; company; until 11:31",
     "11:00 start Late; 11:30:10 start Late; 11:30:20 ran Late 11:00 MadeUp"},
    {"also soon after a boot", "lonely; from 10:59 Late@11:00; until 11:01; pause 11:01 11:30; off 1680; company; until 11:30:20",
     "11:00 start Late; 11:30:10 start Late; 11:30:20 ran Late 11:00 MadeUp"},

    // What cannot be stored.
    {"is not begun", "full; from 11:59 Plain@12:00 ShutDown@12:01; until 12:01:12; space; until 12:02:30",
     "12:01:20 start Plain; 12:01:30 ran Plain 12:00; 12:01:30 warn, for 12:02:30; 12:02:30 shut down; 12:02:30 shut-down ShutDown 12:01"},
    {"and given up", "full; from 11:59 Plain@12:00 ShutDown@12:20; until 12:25", "12:02:10 not-started Plain 12:00 unwritten; 12:19 warn, for 12:20; 12:22:10 refused ShutDown 12:20 unwritten"},

    {"the state cannot be read", "damage; from 12:00 Plain@12:00; until 1+12:00:01", "12:00 state-lost; +1 12:00 start Plain"},

    // Not this time.
    {"beforehand, twice, and over a restart", "from 11:00 Plain@12:00; skip; skip-again; down 0; next; until 12:01; skip-again",
     "11:00 skipped; 12:00 skipped Plain 12:00 ann; 12:01 no such"},
    {"while warned", "from 22:59 Sleep@23:00; skip; until 23:30", "22:59 warn, for 23:00; 23:00 skipped Sleep 23:00 ann"},
    {"a skip taken back: planned anew, with a full warning", "from 22:50 Sleep@23:00; skip; until 22:59:30; unskip; until 23:00:29",
     "22:59:30 warn, for 23:00:30"},
    {"but not when its minute has passed, nor where nothing is skipped", "from 11:59 Plain@12:00; unskip; skip; until 12:00; unskip", "11:59 no such; 12:00 skipped Plain 12:00 ann; 12:00 no such"},
    {"a wake-up that is to come after all takes its alarm, and what it displaces", "from 6:00 WakeUp@7:00 Sleep@7:00; skip; until 6:59:30; unskip; alarms; until 7:00",
     "06:59 warn, for 07:00; 06:59:30 alarms 07:00, none; 07:00 overtaken Sleep 07:00 next; 07:00 awake-already WakeUp 07:00; 07:00 keep awake"},
    {"postponed by as much as is asked for, a minute to twelve hours", "from 11:00 Plain@12:00; later 1; later 3600; later 99999999; next; until 1+01:01:10",
     "11:00 postponed; +1 01:01 start Plain; +1 01:01:10 ran Plain 12:00"},
    {"postponed while warned, and again; the same button twice is once",
     "from 22:59 Sleep@23:00; postpone; postpone-again; until 23:14:10; postpone; until 23:29:10",
     "22:59 warn, for 23:00; 23:14 warn, for 23:15; 23:29 warn, for 23:30"},
    {"a postponed wake-up keeps its alarm", "from 6:00 WakeUp@7:00; postpone; alarms; until 7:20",
     "06:00 alarms 07:15, none; 07:15 awake-already WakeUp 07:00; 07:15 keep awake"},
    {"a postponed one found late", "from 22:59 Sleep@23:00; postpone; sleep 23:40; until 23:50",
     "22:59 warn, for 23:00; 23:40 awake; 23:40 missed Sleep 23:00 asleep 1"},
    {"names of nothing", "from 11:00 Plain@12:00; skip-name; skip-name x; skip-name 99999999999999999999; skip-name 1803902400-0-0",
     "11:00 no such; 11:00 no such; 11:00 no such; 11:00 no such"},
};
// clang-format on

TEST(Rules, Table) {
    for (const Row& row : kRows) {
        VirtualWorld world;
        play(world, row.script);
        std::string log;
        for (const std::string& line : world.log) log += (log.empty() ? "" : "; ") + line;
        EXPECT_EQ(log, row.log) << row.rule;
    }
}

}  // namespace
}  // namespace quorel
