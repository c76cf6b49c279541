#include "daemon/saving/Door.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "kit/MOLLog.h"
#include "model/Names.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostSaves = 16;
constexpr std::ptrdiff_t kMostSavesOfAUser = 4;  // so that nobody's open dialogs keep everybody else out
constexpr std::size_t kMostUsersRemembered = 256;

}  // namespace

Door::Door(EventLoop& loop, sd_bus* bus, const std::string& root, Stored stored)
    : _bus(bus),
      _store(root),
      _stored(std::move(stored)),
      _reader(loop, _store),
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
    const auto known = _users.find(sender);
    if (_saves.size() >= kMostSaves || _saves.contains(sender) ||  // one of a connection at a time
        (known != _users.end() && savesOf(known->second) >= kMostSavesOfAUser))
        return answer.refuse(wire::kBusy, "Too many calls are waiting.");
    const auto gone = [this, sender] {
        MOLLog("Preferences of %s are dropped: the sender has gone.", sender.c_str());
        _saves.erase(sender);
    };
    auto& save = _saves.try_emplace(sender, _bus, notification, answer, gone).first->second;
    save.caller.findUser([this, &save](std::optional<unsigned> user) { userFound(save, user); });
}

void Door::userFound(Save& save, std::optional<unsigned> user) {
    if (!user) return dismiss(save);  // nobody would hear the answer
    if (_users.size() >= kMostUsersRemembered) _users.clear();
    _users[save.caller.name()] = *user;
    const bool tooMany = savesOf(*user) >= kMostSavesOfAUser;
    save.user = user;
    if (tooMany) return refuse(save, wire::kBusy, "Too many calls are waiting.");
    readLater(save);
}

std::ptrdiff_t Door::savesOf(unsigned user) const {
    return std::ranges::count_if(_saves, [user](const auto& save) { return save.second.user == user; });
}

void Door::readLater(Save& save) {
    _unread.push_back(save.caller.name());
    readNext();
}

void Door::readNext() {
    while (!_reader.isReading() && !_unread.empty()) {
        const std::string name = std::move(_unread.front());
        _unread.pop_front();
        const auto next = _saves.find(name);
        if (next == _saves.end()) continue;  // has gone meanwhile
        const bool mayStore = next->second.user == 0U || next->second.allowed;
        _reader.read(next->second.userInfo, mayStore, [this, name](const ListReader::Outcome& outcome) {
            const auto found = _saves.find(name);
            if (found != _saves.end())
                decide(found->second, outcome);
            else if (outcome.kind == ListReader::Outcome::Kind::Stored)
                _stored(outcome.text);  // whoever sent it has gone meanwhile
            readNext();
        });
    }
}

void Door::decide(Save& save, const ListReader::Outcome& outcome) {
    if (outcome.keptUnreadable) MOLLog("The file in place cannot be read; it is kept beside the new one.");
    switch (outcome.kind) {
        case ListReader::Outcome::Kind::Absent:  // which something that was sent never is
        case ListReader::Outcome::Kind::Failed:
            return refuse(save, wire::kFailed, outcome.text);
        case ListReader::Outcome::Kind::Invalid:
            return refuse(save, wire::kInvalidPreferences, outcome.text);
        case ListReader::Outcome::Kind::InPlace:
            return accept(save, "are those in place");
        case ListReader::Outcome::Kind::Fresh:
            return ask(save);
        case ListReader::Outcome::Kind::NotStored:
            return refuse(save, wire::kStorageFailed, outcome.text);
        case ListReader::Outcome::Kind::Stored:
            accept(save, "are stored");
            return _stored(outcome.text);
    }
}

void Door::ask(Save& save) {
    save.caller.ask(kModifyPreferencesAction, save.mayAsk, [this, &save](Verdict verdict) {
        if (verdict != Verdict::Allowed) return refuse(save, wire::kNotAuthorized, textOf(verdict));
        save.allowed = true;
        readLater(save);  // anew: lists that are kept while people look for passwords would add up
    });
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
