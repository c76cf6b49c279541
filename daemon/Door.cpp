#include "daemon/Door.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <utility>

#include "daemon/PreferencesValidator.h"
#include "kit/MOLLog.h"
#include "model/Names.h"
#include "model/PropertyList.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostSaves = 16;
constexpr std::ptrdiff_t kMostSavesOfAUser = 4;  // so that nobody's open dialogs keep everybody else out
constexpr std::size_t kMostUsersRemembered = 256;
constexpr int kShareOfReading = 4;  // a part in so many of the time, when there is much to read

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

}  // namespace

Door::Door(EventLoop& loop, sd_bus* bus, const std::string& root, Stored stored)
    : _bus(bus),
      _store(root),
      _stored(std::move(stored)),
      _reading(loop, [this] { readNext(); }),
      _tidying(loop, [] { malloc_trim(0); }),
      _endpoint(bus, [this](const auto& notification, const auto& answer) { take(notification, answer); }) {
    _store.removeLeftovers();
}

void Door::take(const BusNotification& notification, const BusAnswer& answer) {
    if (!_tidying.isRunning()) _tidying.start(1s);
    if (notification.name != kDaemonMustReloadPrefs || notification.object != kDaemonName)
        return answer.refuse(wire::kUnknownNotification, "The daemon takes no such notification.");
    if (notification.userInfo.size() > wire::kMaximumUserInfoBytes)
        return answer.refuse(wire::kInvalidPreferences, "The user information is larger than 2 MiB.");
    std::string sender(notification.sender);
    if (_saves.size() >= kMostSaves || _saves.contains(sender))  // one of a connection at a time
        return answer.refuse(wire::kBusy, "Too many calls are waiting.");
    const auto gone = [this, sender] {
        MOLLog("Preferences of %s are dropped: the sender has gone.", sender.c_str());
        _saves.erase(sender);
    };
    auto& save = _saves.try_emplace(sender, _bus, notification, answer, gone).first->second;
    if (const auto known = _users.find(sender); known != _users.end()) return userFound(save, known->second);
    save.caller.findUser([this, &save](std::optional<unsigned> user) { userFound(save, user); });
}

void Door::userFound(Save& save, std::optional<unsigned> user) {
    if (!user) return dismiss(save);  // nobody would hear the answer
    if (_users.size() >= kMostUsersRemembered) _users.clear();
    _users[save.caller.name()] = *user;
    const auto others = std::ranges::count_if(_saves, [user](const auto& other) { return other.second.user == user; });
    save.user = user;
    if (others >= kMostSavesOfAUser) return refuse(save, wire::kBusy, "Too many calls are waiting.");
    _unread.push_back(save.caller.name());
    if (!_reading.isRunning()) _reading.start(0s);
}

void Door::readNext() {
    const auto started = std::chrono::steady_clock::now();
    const auto found = _saves.find(_unread.front());
    _unread.pop_front();
    if (found != _saves.end()) read(found->second);
    const auto took = std::chrono::steady_clock::now() - started;
    if (!_unread.empty()) _reading.start(std::chrono::ceil<std::chrono::microseconds>(took) * (kShareOfReading - 1));
}

void Door::read(Save& save) try {
    const Value preferences = decodePropertyList(save.userInfo);
    if (preferences.isAbsent())
        return refuse(save, wire::kInvalidPreferences,
                      "The user information is no property list of at most 64 levels.");
    if (const auto fault = faultInPreferences(preferences)) return refuse(save, wire::kInvalidPreferences, *fault);
    if (!encodePropertyList(preferences, wire::kMaximumUserInfoBytes))
        return refuse(save, wire::kInvalidPreferences, "The file would be larger than 2 MiB.");
    if (_store.read() == preferences) return accept(save, "are those in place");
    if (save.user == 0U) return store(save, preferences);
    save.caller.ask(kModifyPreferencesAction, true, [this, &save](Verdict verdict) {
        if (verdict != Verdict::Allowed) return refuse(save, wire::kNotAuthorized, textOf(verdict));
        store(save, decodePropertyList(save.userInfo));  // anew: kept lists would add up
    });
} catch (const std::exception& exception) {  // memory has run out
    refuse(save, wire::kFailed, exception.what());
}

void Door::store(Save& save, const Value& preferences) {
    if (_store.keepUnreadable()) MOLLog("The file in place cannot be read; it is kept beside the new one.");
    const auto bytes = encodePropertyList(preferences, wire::kMaximumUserInfoBytes);
    const std::string reason = bytes ? _store.write(*bytes) : "Memory has run out";
    if (!reason.empty()) return refuse(save, wire::kStorageFailed, reason);
    _stored(preferences);
    accept(save, "are stored");
}

void Door::accept(Save& save, const char* outcome) {
    MOLLog("Preferences of user %u %s.", *save.user, outcome);
    save.answer.accept();
    dismiss(save);
}

void Door::refuse(Save& save, const char* errorName, const std::string& text) {
    MOLLog("Preferences of user %u are refused: %s", *save.user, text.c_str());
    save.answer.refuse(errorName, text);
    dismiss(save);
}

void Door::dismiss(Save& save) {
    _saves.erase(_saves.find(save.caller.name()));
}

}  // namespace quorel
