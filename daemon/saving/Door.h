#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "daemon/saving/ListReader.h"
#include "daemon/saving/PreferencesStore.h"
#include "daemon/saving/SaveLog.h"
#include "linux/EventLoop.h"
#include "linux/bus/BusEndpoint.h"
#include "linux/bus/Callers.h"

namespace quorel {

/// Where saves come in: takes "DaemonMustReloadPrefs", finds out who sent it, reads and checks the list, has polkit
/// asked, stores.
///
/// Anybody may call, so that what a call takes is bounded: what is too large or too much is refused before it is read,
/// one list is read at a time, and of a call that waits for a person nothing is kept but its message.
class Door {
public:
    using Stored = std::function<void(const std::string& bytes)>;
    /// Loop and callers must outlive it. `stored` is called right after a save is answered: what it does may take a
    /// disk's time, and nothing else is served before. Throws std::exception.
    Door(EventLoop& loop, Callers& callers, const std::string& root, Stored stored);

private:
    /// A save under way, its user known.
    struct Save {
        HeldCall& call;
        const ListReader::Sent sent;  // lasts as long as the call is held
        const bool mayAsk;
        bool allowed;
    };

    void receive(const BusNotification& notification, const BusAnswer& answer);
    void readLater(Save& save);
    void readNext();
    void decide(Save& save, const ListReader::Reading& reading);
    void ask(Save& save);
    void refuse(Save& save, const char* errorName, const std::string& text);
    HeldCall& end(Save& save);

    Callers& _callers;
    const PreferencesStore _store;
    const Stored _stored;
    std::map<std::string, Save, std::less<>> _saves;  // by the caller's bus name
    std::deque<std::string> _unread;                  // whose list is to be read
    SaveLog _log;
    ListReader _reader;
    LoopTimer _tidying;
    BusEndpoint _endpoint;
};

}  // namespace quorel
