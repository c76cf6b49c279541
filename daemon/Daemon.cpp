#include "daemon/Daemon.h"

#include <algorithm>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "daemon/CallerCheck.h"
#include "daemon/PreferencesStore.h"
#include "daemon/PreferencesValidator.h"
#include "kit/MOLLog.h"
#include "model/Names.h"
#include "model/PropertyList.h"

namespace quorel {

namespace {

constexpr std::size_t kMostCalls = 16;
constexpr std::ptrdiff_t kMostCallsOfAUser = 4;  // so that nobody's open dialogs keep everybody else out

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

/// The calls under way, and the one place where they write.
class Daemon::Desk {
public:
    explicit Desk(std::string root) : _store(std::move(root)) { _store.removeLeftovers(); }

    static void take(const std::shared_ptr<Desk>& desk, const BusNotification& notification, const BusAnswer& answer) {
        if (notification.name != kDaemonMustReloadPrefs || notification.object != kDaemonName)
            return answer.refuse(wire::kUnknownNotification, "The daemon takes no such notification.");
        if (!desk->admit(notification.sender)) return answer.refuse(wire::kBusy, "Too many calls are waiting.");
        try {
            std::thread([desk, notification, answer] { desk->handle(notification, answer); }).detach();
        } catch (const std::exception&) {
            desk->dismiss(notification.sender);
            answer.refuse(wire::kBusy, "No more calls can be taken.");
        }
    }

    void close() {
        const std::lock_guard lock(_writing);
        _closed = true;
    }

private:
    /// One call of a sender at a time.
    bool admit(const std::string& sender) {
        const std::lock_guard lock(_mutex);
        return _callers.size() < kMostCalls && _callers.try_emplace(sender).second;
    }

    bool admitUser(const std::string& sender, unsigned userId) {
        const std::lock_guard lock(_mutex);
        const auto others = std::count_if(_callers.begin(), _callers.end(),
                                          [&](const auto& caller) { return caller.second == userId; });
        if (others >= kMostCallsOfAUser) return false;
        _callers[sender] = userId;
        return true;
    }

    void dismiss(const std::string& sender) {
        const std::lock_guard lock(_mutex);
        _callers.erase(sender);
    }

    /// A call's place among those under way. It is left before the call is answered: the sender's next one may be on
    /// its way by then.
    struct Place {
        ~Place() { leave(); }
        void leave() {
            if (taken) desk.dismiss(sender);
            taken = false;
        }
        Desk& desk;
        const std::string& sender;
        bool taken = true;
    };

    void handle(const BusNotification& notification, const BusAnswer& answer) try {
        Place place{*this, notification.sender};
        const auto userId = userIdOfCaller(notification.sender);
        if (!userId) return;  // nobody would hear the answer
        const auto accept = [&](const char* outcome) {
            MOLLog("Preferences of user %u %s.", *userId, outcome);
            place.leave();
            answer.accept();
        };
        const auto refuse = [&](const char* errorName, const std::string& text) {
            MOLLog("Preferences of user %u are refused: %s", *userId, text.c_str());
            place.leave();
            answer.refuse(errorName, text);
        };
        if (!admitUser(notification.sender, *userId)) return refuse(wire::kBusy, "Too many calls are waiting.");
        const Value preferences = decodePropertyList(notification.userInfo);
        if (preferences.isAbsent())
            return refuse(wire::kInvalidPreferences,
                          "The user information is no property list of at most 16 MiB and 64 levels.");
        if (const auto fault = faultInPreferences(preferences)) return refuse(wire::kInvalidPreferences, *fault);
        const auto bytes = encodePropertyList(preferences);
        if (!bytes) return refuse(wire::kInvalidPreferences, "The file would be larger than 16 MiB.");
        if (_store.read() == preferences) return accept("are those in place");
        const Verdict verdict = checkCaller(notification.sender, *userId);
        if (verdict != Verdict::Allowed) return refuse(wire::kNotAuthorized, textOf(verdict));

        const std::lock_guard lock(_writing);
        if (_closed) return refuse(wire::kFailed, "The daemon is ending.");
        if (_store.keepUnreadable()) MOLLog("The file in place cannot be read; it is kept beside the new one.");
        if (const auto reason = _store.write(*bytes); !reason.empty()) return refuse(wire::kStorageFailed, reason);
        accept("are stored");
    } catch (const std::exception& exception) {  // memory has run out; the answer says that it failed
        MOLLog("Preferences are lost: %s", exception.what());
    }

    std::mutex _mutex;
    std::map<std::string, std::optional<unsigned>> _callers;  // by bus name; their users once known
    std::mutex _writing;
    bool _closed = false;
    const PreferencesStore _store;
};

Daemon::Daemon(std::string root) : _desk(std::make_shared<Desk>(std::move(root))) {}

Daemon::~Daemon() {
    _desk->close();
}

bool Daemon::open(std::function<void()> lost, std::string& error) {
    BusEndpoint::Options options;
    options.bus = Bus::System;
    options.name = kDaemonName;
    options.handler = [desk = _desk](const BusNotification& notification, const BusAnswer& answer) {
        Desk::take(desk, notification, answer);
    };
    options.lost = std::move(lost);
    _endpoint = BusEndpoint::open(std::move(options), error);
    return _endpoint != nullptr;
}

}  // namespace quorel
