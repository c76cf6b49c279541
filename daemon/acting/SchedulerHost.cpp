#include "daemon/acting/SchedulerHost.h"

#include <systemd/sd-id128.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "linux/JournalLog.h"
#include "linux/login/Users.h"
#include "model/Preferences.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

/// Of every outcome's entry in the journal.
constexpr std::string_view kOutcomeMessage = "6c0b7b1d5f4e4a0f9d6e3c8a27b41f53";

/// What is warned of stands among the first.
constexpr std::size_t kSoon = 8;

constexpr const char* kHardwareClock = "/sys/class/rtc/rtc0";

/// The service manager says where, and makes it.
std::string stateFolder(const std::string& root) {
    const char* given = root.empty() ? std::getenv("STATE_DIRECTORY") : nullptr;
    return given ? given : root + "/var/lib/quorel";
}

std::string textOf(const Value& value) {
    return value.isText() ? value.text() : std::to_string(value.isBoolean() ? value.intValue() : value.integer());
}

/// Another one after each boot.
std::string bootId() {
    sd_id128_t id{};
    char text[SD_ID128_STRING_MAX];
    return sd_id128_get_boot(&id) < 0 ? std::string() : sd_id128_to_string(id, text);
}

}  // namespace

template <class Event>
auto SchedulerHost::tell(Event event) {
    if constexpr (std::is_void_v<decltype(event(_clocks.now()))>) {
        if (!_hasBegun) return;
        event(_clocks.now());
        _clockWatch.waitFor(_scheduler.nextCall());
    } else {
        const auto result = event(_clocks.now());
        _clockWatch.waitFor(_scheduler.nextCall());
        return result;
    }
}

SchedulerHost::SchedulerHost(EventLoop& loop, Callers& callers, sd_bus* computer, const std::string& root,
                             const Clocks& clocks)
    : _clocks(clocks),
      _state(stateFolder(root) + "/state.plist"),
      _alarms(loop, clocks, {root.empty(), root + kHardwareClock, stateFolder(root) + "/startup-alarm"}),
      _agents(loop, callers),
      _actions(loop, computer, root, clocks, _agents,
               [this](const std::string& token, ActionEnd end, int status, const std::string& reason) {
                   tell([&](ClockReading now) { _scheduler.actionEnded(now, token, end, status, reason); });
               }),
      _sessions(computer, clocks,
                [this](const LoginSession& used) {
                    tell([&](ClockReading now) { _scheduler.used(now, used.session.name); });
                }),
      _terminals(computer, clocks),
      _power(
          loop, computer, clocks, _sessions,
          {[this](Ticket ticket, const Conditions& conditions) {
               tell([&](ClockReading now) { _scheduler.conditionsRead(now, ticket, conditions); });
           },
           [this](Ticket ticket, PowerReply reply, const std::string& reason) {
               tell([&](ClockReading now) { _scheduler.powerReplied(now, ticket, reply, reason); });
           },
           [this](Lid lid) { tell([&](ClockReading now) { _scheduler.lidSeen(now, lid); }); },
           [this](bool keep) { _agents.keepAwake(keep); },
           [this](Conditions conditions, const std::vector<unsigned>& userIds, std::function<void(Conditions)> done) {
               findIdle(std::move(conditions), userIds, std::move(done));
           }}),
      _sleepKinds(computer,
                  [this](const DeniedKinds& denied) {
                      tell([&](ClockReading now) { _scheduler.sleepKindsDenied(now, denied); });
                  }),
      _scheduler({_calendar, _power, _alarms, _actions, _state, *this}),
      _clockWatch(loop, clocks,
                  {[this] { tell([&](ClockReading now) { _scheduler.tick(now); }); },
                   [this] { tell([&](ClockReading now) { _scheduler.zoneChanged(now); }); }}),
      _sleepWatch(loop, computer,
                  {[this](Lid lid) { tell([&](ClockReading now) { _scheduler.goingToSleep(now, lid); }); },
                   [this](Lid lid) {
                       _sessions.restart();
                       _sleepKinds.ask();
                       tell([&](ClockReading now) { _scheduler.resumed(now, lid); });
                   },
                   [this] { tell([&](ClockReading now) { _scheduler.goingDown(now); }); }}) {
    _agents.cameCallback = [this] { tell([&](ClockReading now) { _scheduler.agentCame(now); }); };
    _agents.usedCallback = [this](unsigned user) {
        tell([&](ClockReading now) { _scheduler.used(now, nameOfUser(user)); });
    };
}

void SchedulerHost::follow(const Value& preferences) {
    const Value& list = preferences[preferences::kScheduleArray];
    const bool begins = !std::exchange(_hasBegun, true);
    _actions.scan();
    tell([&](ClockReading now) {
        if (begins)
            _scheduler.start(now, list, _state.read(), bootId());
        else
            _scheduler.listSaved(now, list);
    });
    if (begins) _sleepKinds.ask();
}

bool SchedulerHost::skip(const std::string& token, const std::string& by) {
    return tell([&](ClockReading now) { return _scheduler.skip(now, token, by); });
}

bool SchedulerHost::postpone(const std::string& token, const std::string& by, Seconds length) {
    return tell([&](ClockReading now) { return _scheduler.postpone(now, token, by, length); });
}

bool SchedulerHost::unskip(const std::string& token, const std::string& by) {
    return tell([&](ClockReading now) { return _scheduler.unskip(now, token, by); });
}

Scheduler::Trial SchedulerHost::tryNow(const Value& schedule) {
    return tell([&](ClockReading now) { return _scheduler.tryNow(now, schedule); });
}

Pauses::Answer SchedulerHost::pause(const Pause& wanted) {
    return tell([&](ClockReading now) { return _scheduler.pause(now, wanted); });
}

bool SchedulerHost::resume(const std::string& token, bool onlyBrief) {
    return tell([&](ClockReading now) { return _scheduler.resume(now, token, onlyBrief); });
}

Pause SchedulerHost::completed(const Pause& wanted) const {
    return quorel::completed(wanted, _clocks.now().instant(), _calendar);
}

std::string_view SchedulerHost::faultOf(const Pause& pause) const {
    return quorel::faultOf(pause, _clocks.now().instant());
}

std::vector<Pause> SchedulerHost::pauses() const {
    return _scheduler.pauses().standing(_clocks.now().instant());
}

void SchedulerHost::ended(const Outcome& outcome) {
    std::vector<std::string> names;
    std::vector<std::pair<std::string_view, std::string>> fields = {{"QUOREL_CODE", outcome.code}};
    if (outcome.due != 0) fields.emplace_back("QUOREL_DUE", std::to_string(outcome.due));
    if (!outcome.action.empty()) fields.emplace_back("QUOREL_ACTION", outcome.action);
    const Dictionary& arguments = outcome.arguments;
    names.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string& name = names.emplace_back("QUOREL_");
        for (const char letter : arguments.keyAt(i)) name += static_cast<char>(std::toupper(letter));
        fields.emplace_back(name, textOf(arguments.valueAt(i)));
    }
    writeJournalEntry(kOutcomeMessage, outcomeLine(named(outcome.value())), fields);
}

Value SchedulerHost::named(const Value& told) const {
    const ActionDescription* module = modules().find(told[keys::kAction].text());
    return module && module->names.size() > 0 ? told.with(keys::kNames, module->names) : told;
}

void SchedulerHost::changed() {
    const auto open = _scheduler.upcoming(kSoon);
    _agents.watchUse(std::ranges::any_of(
        open, [](const Upcoming& one) { return one.step == Step::kWarned && one.schedule->idle > 0; }));
    for (const Upcoming& one : open)
        if (one.step == Step::kWarned && one.schedule->action == schedule_keys::kShutDownType) _terminals.announce(one);
    if (changedCallback) changedCallback();
}

void SchedulerHost::findIdle(Conditions conditions, const std::vector<unsigned>& userIds,
                             std::function<void(Conditions)> done) {
    _agents.findIdle(userIds, [userIds, done = std::move(done),
                               conditions = std::move(conditions)](const Agents::Idle& idle) mutable {
        for (std::size_t i = 0; i < userIds.size(); ++i) {
            const auto found = idle.find(userIds[i]);
            if (found != idle.end()) conditions.sessions[i].agentIdle = found->second;
        }
        done(std::move(conditions));
    });
}

}  // namespace quorel
