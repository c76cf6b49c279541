#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "daemon/saving/ListReader.h"
#include "daemon/saving/PreferencesStore.h"
#include "linux/EventLoop.h"
#include "linux/bus/BusCaller.h"
#include "linux/bus/BusEndpoint.h"

namespace quorel {

/// Where saves come in: takes "DaemonMustReloadPrefs", finds out who sent it, reads and checks the list, has polkit
/// asked, stores.
///
/// Anybody may call, so that what a call takes is bounded: what is too large or too much is refused before it is read,
/// one list is read at a time, and of a call that waits for a person nothing is kept but its message.
class Door {
public:
    using Stored = std::function<void(const std::string& bytes)>;
    /// The connection is served by the loop. `stored` is called right after a save is answered: what it does may take a
    /// disk's time, and nothing else is served before. Throws std::exception.
    Door(EventLoop& loop, sd_bus* bus, const std::string& root, Stored stored);

private:
    /// A save under way.
    struct Save {
        Save(sd_bus* bus, const BusNotification& notification, BusAnswer itsAnswer, std::function<void()> gone)
            : answer(std::move(itsAnswer)),
              userInfo(notification.userInfo),
              mayAsk(notification.mayAsk),
              caller(bus, std::string(notification.sender), std::move(gone)) {}
        const BusAnswer answer;
        const std::string_view userInfo;  // lasts as long as the answer
        const bool mayAsk;
        BusCaller caller;
        std::optional<unsigned> user;  // once known
        bool allowed = false;
    };

    void take(const BusNotification& notification, const BusAnswer& answer);
    void userFound(Save& save, std::optional<unsigned> user);
    std::ptrdiff_t savesOf(unsigned user) const;
    void readLater(Save& save);
    void readNext();
    void decide(Save& save, const ListReader::Outcome& outcome);
    void ask(Save& save);
    void accept(Save& save, const char* outcome);
    void refuse(Save& save, const char* errorName, const std::string& text);
    void dismiss(Save& save);

    sd_bus* const _bus;
    const PreferencesStore _store;
    const Stored _stored;
    std::map<std::string, Save, std::less<>> _saves;      // by the caller's bus name
    std::map<std::string, unsigned, std::less<>> _users;  // of those who have called; a bus name is nobody else's later
    std::deque<std::string> _unread;                      // whose list is to be read
    ListReader _reader;
    LoopTimer _tidying;
    BusEndpoint _endpoint;
};

}  // namespace quorel
