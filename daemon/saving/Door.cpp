#include "daemon/saving/Door.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "kit/MOLLog.h"
#include "model/Wire.h"

namespace quorel {

namespace {

using namespace std::chrono_literals;

}  // namespace

Door::Door(EventLoop& loop, Callers& callers, const std::string& root, Stored stored)
    : _callers(callers),
      _store(root),
      _stored(std::move(stored)),
      _log(loop),
      _reader(loop, _store),
      _tidying(loop, [] { malloc_trim(0); }),
      _endpoint(callers.connection(),
                [this](const auto& notification, const auto& answer) { receive(notification, answer); }) {
    _store.removeLeftovers();
}

void Door::receive(const BusNotification& notification, const BusAnswer& answer) {
    if (!_tidying.isRunning()) _tidying.start(1s);
    if (notification.name != kDaemonMustReloadPrefs || notification.object != kDaemonName)
        return answer.refuse(wire::kUnknownNotification, "The daemon takes no such notification.");
    const std::size_t size = std::max(notification.userInfo.size(), notification.base.value_or("").size());
    if (size > wire::kMaximumUserInfoBytes)
        return answer.refuse(wire::kInvalidPreferences, "The user information is larger than 2 MiB.");
    const std::string sender(notification.sender);
    const auto known = [this, sent = ListReader::Sent{notification.userInfo, notification.base},
                        mayAsk = notification.mayAsk](HeldCall& call) {
        readLater(_saves.emplace(call.caller(), Save{call, sent, mayAsk, call.isRoots()}).first->second);
    };
    const auto gone = [this, sender] {
        _log.say(_saves.find(sender)->second.call.user(), "dropped: the sender has gone.");
        _saves.erase(sender);
    };
    _callers.hold(sender, answer, known, gone);
}

void Door::readLater(Save& save) {
    _unread.push_back(save.call.caller());
    readNext();
}

void Door::readNext() {
    while (!_reader.isReading() && !_unread.empty()) {
        const std::string name = std::move(_unread.front());
        _unread.pop_front();
        const auto next = _saves.find(name);
        if (next == _saves.end()) continue;  // has gone meanwhile
        _reader.read(next->second.sent, next->second.allowed, [this, name](const ListReader::Reading& reading) {
            const auto found = _saves.find(name);
            if (found != _saves.end())
                decide(found->second, reading);
            else if (reading.kind == ListReader::Reading::Kind::Stored)
                _stored(reading.text);  // whoever sent it has gone meanwhile
            readNext();
        });
    }
}

void Door::decide(Save& save, const ListReader::Reading& reading) {
    if (reading.keptUnreadable) MOLLog("The file in place cannot be read; it is kept beside the new one.");
    switch (reading.kind) {
        case ListReader::Reading::Kind::Absent:  // which something that was sent never is
        case ListReader::Reading::Kind::Failed:
            return refuse(save, wire::kFailed, reading.text);
        case ListReader::Reading::Kind::Invalid:
            return refuse(save, wire::kInvalidPreferences, reading.text);
        case ListReader::Reading::Kind::InPlace:
            _log.say(save.call.user(), "those in place.");
            return end(save).accept(reading.joined);
        case ListReader::Reading::Kind::Fresh:
            return ask(save);
        case ListReader::Reading::Kind::NotStored:
            return refuse(save, wire::kStorageFailed, reading.text);
        case ListReader::Reading::Kind::Stored:
            MOLLog("Preferences of user %u are stored.", save.call.user());
            end(save).accept(reading.joined);
            return _stored(reading.text);
    }
}

void Door::ask(Save& save) {
    save.call.ask(kModifyPreferencesAction, save.mayAsk, [this, &save](Verdict verdict) {
        if (verdict != Verdict::Allowed) return refuse(save, wire::kNotAuthorized, textOf(verdict));
        save.allowed = true;
        readLater(save);  // anew: lists that are kept while people look for passwords would add up
    });
}

void Door::refuse(Save& save, const char* errorName, const std::string& text) {
    _log.say(save.call.user(), "refused: " + text);
    end(save).refuse(errorName, text);
}

HeldCall& Door::end(Save& save) {
    HeldCall& call = save.call;
    _saves.erase(call.caller());
    return call;
}

}  // namespace quorel
