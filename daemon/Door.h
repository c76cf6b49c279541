#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "daemon/PreferencesStore.h"
#include "linux/BusCaller.h"
#include "linux/BusEndpoint.h"
#include "linux/EventLoop.h"

namespace quorel {

/// Where saves come in: takes "DaemonMustReloadPrefs", finds out who sent it, reads and checks the list, has polkit
/// asked, stores.
///
/// Anybody may call, so that what a call takes is bounded: what is too large or too much is refused before it is read,
/// one list is read at a time and not for long before everything else has its turn, and of a call that waits for a
/// person nothing is kept but its message.
class Door {
public:
    using Stored = std::function<void(const Value& preferences)>;
    /// The connection is served by the loop. `stored` is called before a save is answered. Throws std::exception.
    Door(EventLoop& loop, sd_bus* bus, const std::string& root, Stored stored);

private:
    /// A save under way.
    struct Save {
        Save(sd_bus* bus, const BusNotification& notification, BusAnswer itsAnswer, std::function<void()> gone)
            : answer(std::move(itsAnswer)),
              userInfo(notification.userInfo),
              caller(bus, std::string(notification.sender), std::move(gone)) {}
        const BusAnswer answer;
        const std::string_view userInfo;  // lasts as long as the answer
        BusCaller caller;
        std::optional<unsigned> user;  // once known
    };

    void take(const BusNotification& notification, const BusAnswer& answer);
    void userFound(Save& save, std::optional<unsigned> user);
    void readNext();
    void read(Save& save);
    void store(Save& save, const Value& preferences);
    void accept(Save& save, const char* outcome);
    void refuse(Save& save, const char* errorName, const std::string& text);
    void dismiss(Save& save);

    sd_bus* const _bus;
    const PreferencesStore _store;
    const Stored _stored;
    std::map<std::string, Save, std::less<>> _saves;  // by the caller's bus name
    std::map<std::string, unsigned, std::less<>>
        _users;                       // of callers, who come again; a bus name is nobody else's later
    std::deque<std::string> _unread;  // whose list is to be read
    LoopTimer _reading;
    LoopTimer _tidying;
    BusEndpoint _endpoint;
};

}  // namespace quorel
