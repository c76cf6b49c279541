#include "linux/bus/Callers.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>

#include "model/Wire.h"

namespace quorel {

namespace {

constexpr const char* kTooMany = "Too many calls are waiting.";

}  // namespace

const char* textOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::Dismissed:
            return "The question for permission was dismissed.";
        case Verdict::NobodyToAsk:
            return "Permission cannot be asked for.";
        default:
            return "This takes an administrator's permission.";
    }
}

HeldCall::HeldCall(Callers& callers, std::string caller, const BusAnswer& answer, std::function<void(HeldCall&)> known,
                   std::function<void()> gone)
    : _callers(callers),
      _caller(std::move(caller)),
      _answer(answer),
      _known(std::move(known)),
      _gone(std::move(gone)) {}

HeldCall::~HeldCall() = default;

void HeldCall::ask(const char* action, bool interaction, std::function<void(Verdict)> answered) {
    if (isRoots()) return answered(Verdict::Allowed);
    _question.emplace(_callers._bus, _caller, action, interaction,
                      [answered = std::move(answered)](const std::optional<PolkitQuestion::Answer>& answer) {
                          if (!answer) return answered(Verdict::NobodyToAsk);
                          if (answer->authorized) return answered(Verdict::Allowed);
                          answered(answer->dismissed ? Verdict::Dismissed : Verdict::Refused);
                      });
}

void HeldCall::accept(std::string_view content) {
    _answer.accept(content);
    _callers.end(*this);
}

void HeldCall::accept(const Dictionary& content) {
    _answer.accept(content);
    _callers.end(*this);
}

void HeldCall::refuse(const char* errorName, const std::string& text) {
    _answer.refuse(errorName, text);
    _callers.end(*this);
}

void Callers::hold(sd_bus_message* call, const Known& known) {
    hold(sd_bus_message_get_sender(call), BusAnswer(call), known);
}

void Callers::hold(const std::string& caller, const BusAnswer& answer, const Known& known,
                   const std::function<void()>& gone) {
    const auto before = _users.find(caller);
    if (_held.contains(caller) || (before != _users.end() && isFull(before->second)))
        return answer.refuse(wire::kBusy, kTooMany);
    watch();
    HeldCall& call = _held.try_emplace(caller, *this, caller, answer, known, gone).first->second;
    if (++_unknown == kMostUnknown) _calls.pause(true);
    findUser(call);
}

HeldCall* Callers::find(std::string_view caller) {
    const auto found = _held.find(caller);
    return found == _held.end() ? nullptr : &found->second;
}

/// Over one rule for all, and only while there is somebody to watch: it tells of everybody who leaves the bus.
void Callers::watch() {
    if (_leaving) return;
    _leaving = watchLeaving(
        _bus, [this](const std::string& name) { left(name); },
        [this](bool watches) {
            while (!watches && !_held.empty()) drop(_held.begin()->second);
        });
}

/// Asked after the bus has been told to tell who leaves, so that nobody leaves unnoticed.
void Callers::findUser(HeldCall& call) {
    const auto question =
        newCall(_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixUser");
    sd_bus_message_append(question.get(), "s", call.caller().c_str());
    call._userQuestion =
        callAsync(_bus, question.get(), std::chrono::seconds(10), [this, &call](sd_bus_message* reply) {
            std::uint32_t user = 0;
            const bool said = !errorOf(reply) && sd_bus_message_read(reply, "u", &user) > 0;
            userFound(call, said ? std::optional<unsigned>(user) : std::nullopt);
        });
}

void Callers::userFound(HeldCall& call, std::optional<unsigned> user) {
    if (!user) return end(call);  // nobody would hear the answer
    if (_users.size() >= kMostUsersRemembered) _users.clear();
    _users[call.caller()] = *user;
    if (isFull(*user)) return call.refuse(wire::kBusy, kTooMany);
    call._user = user;
    leaveUnknown();
    std::exchange(call._known, nullptr)(call);
}

bool Callers::isFull(unsigned user) const {
    const auto of = [this](auto isOne) {
        return std::ranges::count_if(_held,
                                     [&](const auto& held) { return held.second._user && isOne(held.second.user()); });
    };
    if (of([user](unsigned other) { return other == user; }) >= kMostOfAUser) return true;
    return user != 0 && of([](unsigned other) { return other != 0; }) >= kMostOfAll;
}

void Callers::left(const std::string& name) {
    const auto found = _held.find(name);
    if (found == _held.end()) return;
    drop(found->second);
}

/// Unanswered as it is, its caller is told that it has failed.
void Callers::drop(HeldCall& call) {
    if (call._user && call._gone) call._gone();
    end(call);
}

void Callers::end(HeldCall& call) {
    if (!call._user) leaveUnknown();
    _held.erase(_held.find(call.caller()));
    if (_held.empty()) _leaving.reset();
}

void Callers::leaveUnknown() {
    if (_unknown-- == kMostUnknown) _calls.pause(false);
}

}  // namespace quorel
