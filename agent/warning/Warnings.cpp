#include "agent/warning/Warnings.h"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cstdlib>
#include <set>
#include <string_view>
#include <utility>

#include "linux/login/Users.h"
#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/Upcoming.h"
#include "model/Wire.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using namespace std::chrono_literals;

constexpr auto kBetweenRenewals = 15s;
constexpr const char* kPostponeKey = "postpone";
constexpr const char* kSkipKey = "skip";

/// Whether this user may be at the computer: not while the only sessions are in the background.
bool isActive() {
    char* state = nullptr;
    if (sd_uid_get_state(getuid(), &state) < 0) return true;
    const std::unique_ptr<char, Release<std::free>> owned(state);
    return std::string_view(state) != "online" && std::string_view(state) != "lingering";
}

std::string titleOf(const Value& occurrence) {
    const char* text = translated("Shutting down at {1}");
    if (occurrence[keys::kAction].text() == schedule_keys::kSleepType) text = translated("Going to sleep at {1}");
    if (occurrence[keys::kRestart].intValue() != 0) text = translated("Restarting at {1}");
    return filled(text, {timeText(occurrence[keys::kAt].integer())});
}

/// The title has the time already, unless it is another than was planned.
std::string bodyOf(const Value& occurrence) {
    const std::string due = timeText(occurrence[keys::kDue].integer());
    if (due == timeText(occurrence[keys::kAt].integer())) return translated("As planned.");
    return filled(translated("Planned for {1}."), {due});
}

/// "Sleep, planned for 23:15".
std::string reasonOf(const Value& occurrence) {
    return filled(translated("{1}, planned for {2}"),
                  {actionName(occurrence[keys::kAction].text(), occurrence[keys::kRestart].intValue() != 0),
                   timeText(occurrence[keys::kDue].integer())});
}

bool isSame(const Value& a, const Value& b) {
    return a[keys::kDue] == b[keys::kDue] && a[keys::kAction] == b[keys::kAction];
}

}  // namespace

Warnings::Warnings(EventLoop& loop, sd_bus* session, DaemonLink& daemon)
    : _session(session), _daemon(daemon), _news(session, nullptr), _renewal(loop, [this] { renew(); }) {}

void Warnings::update() {
    std::set<std::string> announced;
    const bool active = isActive();
    for (const Value& occurrence : _daemon.upcoming()) {
        if (occurrence[keys::kStep].text() != wire::step::kWarned || !active) continue;
        const std::string token = occurrence[keys::kToken].text();
        announced.insert(token);
        Warning& warning = _warnings[token];
        const bool isNew = !warning.occurrence.isDictionary();
        const Permission permission = {_daemon.mayPostpone(), _daemon.maySkip()};
        warning.occurrence = occurrence;
        if (!isNew && (permission == warning.permission || warning.notifier->isDone())) continue;
        warning.permission = permission;
        if (isNew) warning.isAnswered = false;
        if (!warning.notifier)
            warning.notifier =
                std::make_unique<Notifier>(_session, [this, token](const std::string& key) { answer(token, key); });
        show(warning);
    }
    for (auto each = _warnings.begin(); each != _warnings.end();) {
        Warning& warning = each->second;
        const bool isOver = !announced.contains(each->first);
        if (isOver && warning.occurrence.isDictionary()) {
            warning.notifier->withdraw();
            if (!warning.isAnswered) tellWhy(warning.occurrence);
            warning.occurrence = Value();
        }
        // The notifier stays until its last call has been answered.
        each = isOver && warning.notifier->isIdle() ? _warnings.erase(each) : std::next(each);
    }
    if (!announced.empty() && !_renewal.isRunning()) _renewal.start(kBetweenRenewals);
}

void Warnings::show(Warning& warning) {
    Message message{titleOf(warning.occurrence), bodyOf(warning.occurrence)};
    message.isUrgent = true;
    if (warning.permission.postpone) message.buttons.push_back({kPostponeKey, translated("Postpone 15 minutes")});
    if (warning.permission.skip) message.buttons.push_back({kSkipKey, translated("Skip")});
    warning.notifier->show(std::move(message));
}

/// A notification server may have been restarted, and polkit may have been too slow to say who may do what.
void Warnings::renew() {
    update();
    _daemon.plan().fetch();
    for (auto& [token, warning] : _warnings)
        if (warning.occurrence.isDictionary() && !warning.notifier->isDone()) show(warning);
}

void Warnings::answer(const std::string& token, const std::string& key) {
    Warning& warning = _warnings[token];
    warning.isAnswered = true;
    const auto refused = [this, token](const BusError& error) {
        const auto found = _warnings.find(token);
        if (!error || found == _warnings.end() || !found->second.occurrence.isDictionary()) return;
        tell(found->second.occurrence, refusalText(error.name, error.message));
        found->second.isAnswered = false;  // it still happens, and can still be answered
        show(found->second);
    };
    if (key == kSkipKey) _daemon.plan().skip(token, refused);
    if (key == kPostponeKey) _daemon.plan().postpone(token, refused);
}

/// Others who were told of it are told that it will not be, and who said so.
void Warnings::tellWhy(const Value& occurrence) {
    const std::string own = nameOfUser(getuid());
    for (const Value& next : _daemon.upcoming())
        if (isSame(next, occurrence) && !next[keys::kBy].text().empty() && next[keys::kBy].text() != own)
            return tell(occurrence,
                        next[keys::kStep].text() == wire::step::kPostponed
                            ? filled(translated("postponed until {1} by {2}"),
                                     {timeText(next[keys::kAt].integer()), plainText(next[keys::kBy].text())})
                            : stepText(next));
    const Instant at = occurrence[keys::kAt].integer();
    const Value pause = pauseAround(_daemon.pauses(), at);
    if (pause.isPresent() && pause[keys::kBy].text() != own)
        return tell(occurrence, filled(translated("Paused {1}"), {pauseText(pause, at)}));
    const Array& outcomes = _daemon.outcomes();
    for (auto ended = outcomes.rbegin(); ended != outcomes.rend(); ++ended)
        if (isSame(*ended, occurrence) && (*ended)[keys::kCode].text() == outcome::kSkipped &&
            (*ended)[keys::kArguments][keys::kBy].text() != own)
            return tell(occurrence, outcomeText(*ended));
}

void Warnings::tell(const Value& occurrence, const std::string& what) {
    _news.show({reasonOf(occurrence), what});
}

}  // namespace quorel
