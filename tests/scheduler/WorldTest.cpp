// A computer to which everything happens in random order, in virtual time, with what must hold whatever happens.
// Without arguments: fixed seeds. --seed N: that one, with its log. --seconds N --seed random: new ones, for so long.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <iostream>
#include <map>
#include <random>
#include <set>

#include "tests/scheduler/VirtualWorld.h"

namespace quorel {
namespace {

struct Broken {
    std::string what;
};

class RandomWorld {
public:
    RandomWorld(unsigned seed, bool tells) : _random(seed), _tells(tells), _world(pick(kZones)) {
        _isCalm = chance(2);
        _world.saved = [this](const Value& before, const Value& after) { saved(before, after); };
        _world.acted = [this](const std::string& what, const Occurrence* one) { acted(what, one); };
        _world.farAlarms = chance(2);
        _world.armed = [this](std::optional<Instant> at) {
            if (!at) return;
            if (*at <= _world.now.instant()) fail("an alarm in the past");
            // It may be so much before what is due at a pause's end.
            const Instant due = std::max(*at, _world.now.instant() + rules::kNearestAlarm) + rules::kStartEarly;
            for (const Pause& pause : _world.scheduler->pauses().all())
                if (pause.from <= *at && due < pause.until) fail("an alarm within a pause");
        };
    }

    void live() {
        for (int i = 0, many = 2 + number(9); i < many; ++i) add();
        _world.begin(number(24), number(60), number(60), list());
        takeOver();
        for (int i = 0; i < 250; ++i) {
            happen();
            check();
        }
        recover();
        _world.until(_world.now.instant() + 2 * kDay);
        check();
    }

    std::vector<std::string>& log() { return _world.log; }

private:
    static constexpr const char* kZones[] = {"UTC", "Europe/Paris", "America/Havana", "Australia/Lord_Howe"};
    using Key = std::pair<Instant, std::string>;

    int number(int below) { return static_cast<int>(_random() % static_cast<unsigned>(below)); }
    bool chance(int of) { return number(of) == 0; }
    template <std::size_t kSize>
    const char* pick(const char* const (&of)[kSize]) {
        return of[number(kSize)];
    }
    const Upcoming& oneOf(const std::vector<Upcoming>& some) {
        return some[static_cast<std::size_t>(number(static_cast<int>(some.size())))];
    }
    [[noreturn]] void fail(const std::string& what) { throw Broken{what}; }
    void note(const std::string& what) {
        if (_tells) _world.note("* " + what);
    }

    // The list. Times lie close together, so that Schedules meet; no two of one action have the same minute.
    void add() {
        static constexpr const char* kActions[] = {"Sleep", "Sleep", "WakeUp", "WakeUp", "ShutDown", "Plain", "Late"};
        std::string action = pick(kActions);
        Dictionary own;
        if (chance(2)) own.set("Only When Idle", true);
        if (chance(2)) own.set("Needs Wake Up", true);
        if (chance(2)) own.set("Needs Startup", true);
        if (action == "Plain" || action == "Late") action += std::to_string(number(100));
        const int minute = (number(8) * 181 + number(4)) % (24 * 60);
        const auto same = [&](const Value& one) {
            return one["Action Type"].text().ends_with(action) && one["Action Hour"].integer() == minute / 60 &&
                   one["Action Minute"].integer() == minute % 60;
        };
        if (std::ranges::none_of(_all, same)) _all.push_back(every(action, minute / 60, minute % 60, own));
    }
    Array list() {
        Array on;
        for (const Value& one : _all)
            if (!chance(8)) on.push_back(one);
        return on;
    }
    void takeOver() {
        _agenda = std::make_shared<const Agenda>(_calendar, readScheduleList(_world.list, _world).schedules);
        _isAmbiguous = false;
        _pending.clear();
    }
    bool isSettled() const {
        return !_isBetween && _world.now.awake - _world.withoutWordSince > 90'000 && _world.scheduler &&
               !_world.scheduler->isClockBehind() && (_world.now.synchronised || _world.now.boot >= 60'000) &&
               _world.now.boot >= _trustedAt;
    }

    // What happens.
    void happen() {
        VirtualWorld& w = _world;
        settleConditions();
        pass();
        w.attempt([&] { happenNow(); });
        if (!w.scheduler) recover();
    }
    void happenNow() {
        VirtualWorld& w = _world;
        const std::vector<Upcoming> upcoming = w.scheduler->upcoming(4);
        switch (number(26)) {
            case 0:
            case 1:
                return sleep();
            case 2:
                return nap();
            case 3:
                return off();
            case 4:
            case 5:
                return restart();
            case 6:
                note("save");
                return save();
            case 7:
            case 8:
                if (upcoming.empty()) return;
                note("skip");
                w.scheduler->skip(w.now, oneOf(upcoming).token, "ann");
                return;
            case 9:
            case 10:
                return postpone(upcoming);
            case 11:
                if (!_isCalm) setClock();
                return;
            case 12:
                w.scheduler->used(w.now, "ann");
                return;
            case 13:
                w.replies = {chance(2) ? PowerReply::kRefused : PowerReply::kUnderWay};
                return;
            case 14:
                if (_isCalm) return;
                note("zone");
                zone();
                return;
            case 15:
                w.killAt = chance(3) ? "suspend" : chance(2) ? "shut down" : "start";
                return;
            case 16:
                w.lid = {chance(2), chance(2)};
                w.scheduler->lidSeen(w.now, w.lid);
                return;
            case 17:
                w.full = !_isCalm && !w.full;
                _wasFull = _wasFull || w.full;
                return;
            case 18:
                if (upcoming.empty()) return;
                note("unskip");
                w.scheduler->unskip(w.now, oneOf(upcoming).token, "ann");
                return;
            case 19:
                note("try now");
                return tryOne(_all[static_cast<std::size_t>(number(static_cast<int>(_all.size())))]);
            case 20:
                return pause();
            case 21:
                note("resume");
                w.scheduler->resume(w.now, chance(3) || w.scheduler->pauses().all().empty()
                                               ? std::string()
                                               : w.scheduler->pauses().all().front().token());
                return;
            default:
                return;
        }
    }
    void settleConditions() {
        VirtualWorld& w = _world;
        if (!w.scheduler) recover();
        w.conditions = {};
        if (chance(4)) w.conditions.inhibitors = {{"apt", "upgrade"}};
        if (chance(9)) w.conditions.scheduledShutdown = "reboot";
        if (chance(2)) w.conditions.sessions = {{"ann", true, chance(2) ? 0 : kHour, {}}};
        w.conditions.sinceLastSession = chance(2) ? 0 : kHour;
        w.answers = !chance(12);
        w.lies = chance(12);
        w.silent = chance(9);
        w.lonely = chance(3);
        w.actionLasts = chance(5) ? kHour / 2 : 1 + number(90);
        w.wakenAt = w.now.instant() + number(chance(2) ? 600 : int(14 * kHour));
        if (!w.lonely) w.attempt([&] { w.scheduler->agentCame(w.now); });
        if (!w.scheduler) recover();
    }
    /// To somewhere near the next thing, mostly.
    void pass() {
        VirtualWorld& w = _world;
        Instant end = w.now.instant() + 1 + number(chance(3) ? int(9 * kHour) : 400);
        if (const auto next = w.scheduler->upcoming(3); !next.empty() && !chance(3)) {
            const Instant near = oneOf(next).at - 90 + number(200);
            if (near > w.now.instant() && near < w.now.instant() + 2 * kDay) end = near;
        }
        const int before = w.ticks;
        const Instant from = w.now.instant();
        w.until(end);
        if (!w.scheduler) recover();
        if (w.ticks - before > 60 + (w.now.instant() - from) / 4) fail("it hardly rests");
        if (!_world.now.synchronised && chance(3)) {
            note("synchronised");
            w.now.synchronised = true;
            const Seconds by = std::exchange(_ahead, 0);
            w.attempt([&] { w.setClock(-by); });
            if (!w.scheduler) recover();
        }
    }
    void sleep() {
        note("sleep");
        if (_world.wakenAt <= _world.now.instant()) _world.wakenAt = _world.now.instant() + 1 + number(600);
        _world.sleep();
        if (!_world.scheduler) recover();
    }
    /// Asleep, and then something before the word that it is over.
    void nap() {
        VirtualWorld& w = _world;
        const bool announced = !chance(3);
        note(announced ? "nap" : "nap without a word");
        const Seconds slept = chance(4) ? 0 : 1 + number(chance(2) ? 300 : 30'000);
        if (announced) w.scheduler->goingToSleep(w.now, w.lid);
        _isBetween = announced;
        w.pass(slept, false);
        w.scheduler->tick(w.now);
        if (announced && chance(2)) save();
        if (announced && chance(4) && !_isCalm) w.setClock(chance(2) ? 1 : -1);
        if (announced) w.scheduler->resumed(w.now, w.lid);
        _isBetween = false;
        if (_isAmbiguous && isSettled()) takeOver();
    }
    void off() {
        VirtualWorld& w = _world;
        recover();
        const bool isSet = _isCalm || chance(3);
        w.now.synchronised = isSet;
        const Seconds ahead = isSet ? 0 : chance(2) ? number(400) - 200 : number(19'000) - 9'500;
        note("off, and ahead by " + std::to_string(ahead));
        _trustedAt = 0;
        const Seconds lasts = 20 + number(chance(2) ? 300 : int(40 * kHour));
        _lastWakeUp -= w.now.boot + lasts * 1000;  // the boot clock begins anew
        w.off(lasts, chance(2), ahead);
        _ahead = ahead;
        if (_isAmbiguous || w.scheduler) takeOver();
        if (!isSet && w.scheduler && w.scheduler->isClockBehind()) _trustedAt = w.now.boot + 600'000;
    }
    void restart() {
        VirtualWorld& w = _world;
        w.full = false;
        w.scheduler->tick(w.now);
        if (!w.scheduler) return;
        note("restart");
        const bool compares = isSettled() && !_isAmbiguous;
        const auto before = standing();
        w.kill();
        if (!chance(3)) {
            w.boot();
            if (w.scheduler && compares && standing() != before) fail("a restart changed something");
        } else {
            w.pass(number(400), true);
            w.boot();
        }
        if (isSettled()) takeOver();
    }
    /// What is open or comes, but for what is announced again.
    std::vector<std::string> standing() const {
        std::vector<std::string> all;
        for (const Upcoming& one : _world.scheduler->upcoming(90)) {
            if (one.due > _world.now.instant() + 3 * kDay) continue;
            const Column column = rowOf(one.step).column;
            if (column == Column::kInCourse || column == Column::kActing || isTrial(one.token)) continue;
            all.push_back(one.token + " " + std::string(nameOf(one.step)) + " " + one.by);
        }
        std::ranges::sort(all);
        return all;
    }
    /// A restart withdraws them.
    bool isTrial(const std::string& token) const { return _trials.contains(token.substr(0, token.find('-', 20))); }
    void save() {
        if (chance(4)) add();
        const bool now = isSettled() && !_isAmbiguous;
        _former = _agenda;
        _world.saveList(list());
        if (now) checkAccounts();  // the old one's
        _isAmbiguous = true;
        if (now) takeOver();
    }
    void postpone(const std::vector<Upcoming>& upcoming) {
        if (upcoming.empty()) return;
        note("postpone");
        const Upcoming& one = oneOf(upcoming);
        if (_world.scheduler->postpone(_world.now, one.token, "ann", 60 * number(40)))
            _postponed[{one.due, one.schedule->action}] = _world.now.instant() + 366 * kDay;
    }
    void tryOne(const Value& schedule) {
        _opened[{_world.now.instant(), schedule["Action Type"].text()}].insert(0);  // by another name than the plan's
        _trials.insert(_world.scheduler->tryNow(_world.now, schedule).token);
    }
    void pause() {
        const Instant from = _world.now.instant() + (chance(2) ? 0 : 60 * number(600));
        const Instant until = from + 1 + number(chance(3) ? 120'000 : chance(2) ? 60 : 5400);
        note("pause from " + VirtualWorld::clock(from) + " until " + VirtualWorld::clock(until));
        _world.scheduler->pause(_world.now, {.from = from, .until = until, .by = chance(2) ? "ann" : "root"});
    }
    void setClock() {
        static constexpr Seconds kSteps[] = {1, 30, 100, 150, 3600, 10'799, 10'800, 86'400};
        const Seconds by = kSteps[number(8)] * (chance(2) ? 1 : -1);
        note("set " + std::to_string(by));
        if (isSettled()) _world.setClock(by);
    }
    void zone() {
        if (!isSettled() || _isAmbiguous) return;
        _world.scheduler->tick(_world.now);
        checkAccounts();
        for (const Upcoming& one : _world.scheduler->upcoming(50))
            _opened[{one.due, one.schedule->action}].insert(one.schedule->digest);
        setenv("TZ", pick(kZones), 1);
        _world.scheduler->zoneChanged(_world.now);
        _calendar.refresh();
        _pending.clear();
    }
    /// Everything that stands in its way is taken away.
    void recover() {
        VirtualWorld& w = _world;
        w.killAt.clear();
        w.full = false;
        if (!w.scheduler) w.boot();
        w.attempt([&] { w.scheduler->tick(w.now); });
        if (!w.scheduler) w.boot();
        if (isSettled() && _isAmbiguous) takeOver();
    }

    // What must hold.
    void heard(const Value& told, const Value& before) {
        const Outcome outcome{told["Code"].text(), told["At"].integer(), told["Due"].integer(), told["Action"].text(),
                              told["Arguments"].dictionary()};
        const Instant now = outcome.at;  // it may have been stored later
        if (outcome.code == outcome::kCorrection) {
            // What has run may come again after a correction; where the clock was ahead, what has run before this boot
            // and what was only told. What is remembered as done may not.
            const std::int64_t by = outcome.arguments["By"].integer();
            // Several steps may come to a great one. What was not stored may have been done.
            const bool isGreat =
                std::abs(by) >= 10'800 || by == 0 || _wasFull || before["Watermark"].integer() - now >= 10'800;
            std::erase_if(_told, [&](const auto& one) {
                const auto& [code, boot] = one.second;
                const bool comesAgain = isGreat || code == outcome::kMissed || boot != _world.bootId;
                const bool erased = one.first.first > now && comesAgain && (_wasFull || !isDone(before, one.first));
                if (erased && _wasFull) _perhapsDone.insert(one.first);
                return erased;
            });
            std::erase_if(_counted, [&](const Key& key) { return key.first > now; });
            if (isGreat) _lastWakeUp = -kDay * 1000;
            _mark = now;
            _pending.clear();
        }
        if (outcome.code == outcome::kPaused) _countBefore += outcome.arguments["Count"].integer();
        if (!outcome.due) return;
        if (outcome.code == outcome::kWithdrawn && outcome.due > now && outcome.due > before["Watermark"].integer())
            return;
        if (outcome.code == outcome::kClockCorrected) return;  // it may come again, or lies behind
        const std::int64_t count = outcome.code == outcome::kMissed ? outcome.arguments["Count"].integer() : 1;
        if (count > 1) return heardMany(outcome, count);
        const Key key(outcome.due, outcome.action);
        if (_told.contains(key) && !areSeveral(key))
            fail("told twice: " + VirtualWorld::clock(outcome.due) + " " + _told[key].first + " and " + outcome.code);
        _told[key] = {outcome.code, _world.bootId};
        const bool isWakeUp = outcome.code == outcome::kWokeUp || outcome.code == outcome::kStarted ||
                              outcome.code == outcome::kAwakeAlready;
        if (!isWakeUp) return;
        _lastWakeUp = _world.now.boot - std::max<Seconds>(now - outcome.due, 0) * 1000;
        _lastWakeUpDue = std::max(outcome.due, now - 60);
    }
    static bool isDone(const Value& state, const Key& key) {
        return std::ranges::any_of(state["Open"].array(), [&](const Value& open) {
            return open["Step"].text() == "done" && open["Due"].integer() == key.first &&
                   open["Action"].text() == key.second;
        });
    }
    /// Two Schedules of one action, which the clock's leap or a zone brings together.
    bool areSeveral(const Key& key) {
        std::set<std::uint64_t>& some = _opened[key];
        for (const auto* agenda : {&_agenda, &_former}) {
            if (!*agenda) continue;
            (*agenda)->visit(key.first - 1, key.first, [&](const Occurrence& one) {
                if (one.schedule->action == key.second) some.insert(one.schedule->digest);
            });
        }
        return some.size() > 1 || some.contains(0);
    }
    void heardMany(const Outcome& last, std::int64_t count) {
        std::vector<Instant> some;
        for (const auto* agenda : {&_agenda, &_former}) {
            if (!*agenda || !some.empty()) continue;
            std::uint64_t digest = 0;
            (*agenda)->visit(last.due - 1, last.due, [&](const Occurrence& one) {
                if (one.schedule->action == last.action) digest = one.schedule->digest;
            });
            (*agenda)->visit(last.due - 32 * kDay, last.due, [&](const Occurrence& one) {
                if (one.schedule->digest == digest && !_told.contains({one.due, last.action})) some.push_back(one.due);
            });
        }
        std::ranges::sort(some, std::greater());
        if (some.size() < std::size_t(count)) return fail("missed more than there were");
        for (std::int64_t i = 0; i < count; ++i)
            _told.emplace(Key(some[std::size_t(i)], last.action), std::pair(last.code, _world.bootId));
    }
    /// What has been taken up, is accounted for.
    void saved(const Value& before, const Value& after) {
        for (const Value& open : after["Open"].array())
            _opened[{open["Due"].integer(), open["Action"].text()}].insert(
                std::stoull(open["Digest"].text(), nullptr, 16));
        const Array &old = before["Outcomes"].array(), &all = after["Outcomes"].array();
        std::size_t gone = 0;
        while (!std::equal(old.begin() + std::ptrdiff_t(gone), old.end(), all.begin(),
                           all.end() - std::ptrdiff_t(all.size() + gone - old.size())))
            ++gone;
        for (std::size_t i = old.size() - gone; i < all.size(); ++i) heard(all[i], before);
        const Instant from = std::max(_mark, before["Watermark"].integer());
        if (before.isAbsent() || !_agenda || std::exchange(_wasFull, false)) return;
        _pending.emplace_back(from, after["Watermark"].integer());
    }
    void checkAccounts() {
        for (const auto& [from, upTo] : std::exchange(_pending, {})) {
            if (upTo <= from || _isAmbiguous) continue;
            _agenda->visit(std::max(from, _mark), upTo, [&](const Occurrence& one) {
                const auto isIt = [&](const Value& open) {
                    return open["Due"].integer() == one.due && open["Action"].text() == one.schedule->action;
                };
                const Key key(one.due, one.schedule->action);
                if (_told.contains(key) || _perhapsDone.contains(key)) return;
                if (std::ranges::any_of(_world.stored["Open"].array(), isIt)) return;
                if (isCounted({one.due, one.schedule->action})) return;
                fail("not accounted for: " + one.schedule->action + " " + VirtualWorld::clock(one.due));
            });
        }
    }
    /// Pauses do not tell what was due within them, but how many.
    bool isCounted(const Key& key) {
        std::int64_t count = _countBefore;
        for (const Value& pause : _world.stored["Pauses"].array()) count += pause["Count"].integer();
        if (static_cast<std::int64_t>(_counted.size()) < count) _counted.insert(key);
        return _counted.contains(key);
    }
    void acted(const std::string& what, const Occurrence* one) {
        const Instant now = _world.now.instant();
        for (const Pause& pause : _world.scheduler->pauses().all())
            if (pause.from < now && now < pause.until) fail("within a pause: " + what);
        if (one) {
            const Key key(one->due, one->schedule->action);
            if (_isCalm && now < one->due) fail("early: " + what);
            if (_isCalm && !one->schedule->makeUp && !_postponed.contains(key) && now - one->due > 1000)
                fail("late: " + what);
            return;
        }
        if (what != "suspend") return;
        if (_world.wakenAt <= now) _world.wakenAt = now + 1 + number(int(14 * kHour));
        for (const Value& open : _world.stored["Open"].array()) {
            if (open["Step"].text() != "acting" || !open["Action"].text().ends_with("Sleep")) continue;
            if (_isCalm && now < open["Due"].integer()) fail("a sleep, early");
            if (_world.now.boot - _lastWakeUp < 600'000 && open["Due"].integer() < _lastWakeUpDue && _isCalm)
                fail("put to sleep after a wake-up");
        }
    }
    void check() {
        VirtualWorld& w = _world;
        if (!w.scheduler) return;
        if (isSettled() && _isAmbiguous) takeOver();
        if (!w.full) checkAccounts();
        const Instant now = w.now.instant();
        const auto next = w.scheduler->nextCall();
        if (next && *next <= now) fail("the next call lies in the past");
        if (w.scheduler->outcomes().size() > 500) fail("too many outcomes");
        if (!isSettled()) return;
        for (const Upcoming& one : w.scheduler->upcoming(50)) {
            const Column column = rowOf(one.step).column;
            const bool isBehind =
                one.at < now && column != Column::kInCourse && column != Column::kActing && column != Column::kRunning;
            if (isBehind) fail("left behind: " + one.token + " " + std::string(nameOf(one.step)));
        }
    }

    std::mt19937 _random;
    const bool _tells;
    bool _isCalm = false;  ///< nobody touches the clock
    VirtualWorld _world;
    SystemCalendar _calendar;
    Array _all;
    std::shared_ptr<const Agenda> _agenda, _former;
    bool _isAmbiguous = false;  ///< saved, and perhaps not yet taken over
    bool _isBetween = false;
    bool _wasFull = false;  ///< something was not stored
    std::int64_t _trustedAt = 0;
    Seconds _ahead = 0;
    std::map<Key, std::pair<std::string, std::string>> _told;  ///< the code, and in which boot
    std::map<Key, std::set<std::uint64_t>> _opened;            ///< the Schedules that had it open
    std::set<Key> _perhapsDone;
    std::map<Key, Instant> _postponed;
    std::set<std::string> _trials;
    std::set<Key> _counted;         ///< by pauses
    std::int64_t _countBefore = 0;  ///< by those that are over
    std::vector<std::pair<Instant, Instant>> _pending;
    Instant _mark = 0;
    std::int64_t _lastWakeUp = -kDay * 1000;
    Instant _lastWakeUpDue = 0;
};

bool livesWell(unsigned seed, bool tells) {
    RandomWorld world(seed, tells);
    std::string fault;
    try {
        world.live();
    } catch (const Broken& broken) {
        fault = broken.what;
    }
    if (tells || !fault.empty())
        for (const std::string& line : world.log()) std::cout << line << "\n";
    if (!fault.empty()) std::cout << "Seed " << seed << ": " << fault << std::endl;
    return fault.empty();
}

}  // namespace
}  // namespace quorel

int main(int count, char** arguments) {
    using namespace quorel;
    const auto argument = [&](const char* name) -> const char* {
        for (int i = 1; i + 1 < count; ++i)
            if (std::strcmp(arguments[i], name) == 0) return arguments[i + 1];
        return nullptr;
    };
    const std::clock_t kFixedFor = 30 * CLOCKS_PER_SEC;  // of the processor's time
    const char* const seed = argument("--seed");
    const char* const seconds = argument("--seconds");
    if (seed && std::strcmp(seed, "random") != 0) return livesWell(unsigned(std::atoll(seed)), true) ? 0 : 1;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoll(seconds) : 0);
    std::random_device device;
    unsigned worlds = 0, broken = 0;
    for (; seed ? std::chrono::steady_clock::now() < end : worlds < 5 || std::clock() < kFixedFor; ++worlds)
        broken += livesWell(seed ? device() : worlds + 1, false) ? 0 : 1;
    std::cout << worlds << " worlds, " << broken << " broken" << std::endl;
    return broken == 0 ? 0 : 1;
}
