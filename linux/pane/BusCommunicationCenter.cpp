#include "linux/pane/BusCommunicationCenter.h"

#include <pthread.h>

#include <csignal>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/bus/BusEndpoint.h"
#include "linux/bus/BusPeer.h"
#include "model/PropertyList.h"
#include "model/Wire.h"
#include "pane/VXCommunicationProtocol.h"

namespace quorel {

namespace {

using Clock = BusPeer::Clock;

constexpr std::chrono::seconds kPatience{1};  // somebody waits for the pane to open

/// The bytes that a dictionary travels as; none for none. Throws std::invalid_argument, which says why it cannot.
std::string encoded(const Value& dictionary) {
    if (dictionary.isAbsent()) return {};
    if (auto bytes = encodePropertyList(dictionary, wire::kMaximumUserInfoBytes)) return std::move(*bytes);
    throw std::invalid_argument(encodePropertyList(dictionary) ? "takes more than 2 MiB"
                                                               : "is no property list, or far too large a one");
}

/// `base`: what preferences were edited from, if they were.
EditsAnswer post(BusPeer& peer, const Notification& notification, const BusCommunicationCenter::Limits& limits,
                 const Value& base = Value()) try {
    using Outcome = BusPeer::PostReply::Outcome;
    std::optional<std::string> baseBytes;
    if (base.isPresent()) baseBytes = encoded(base);
    BusPeer::PostReply reply = peer.post(
        {notification.name, notification.object.value_or(""), encoded(notification.userInfo), std::move(baseBytes)},
        limits.silence, Clock::now() + limits.handling);
    const std::string& why = reply.refusal.message;
    if (reply.outcome == Outcome::Silent) MOLLog("%s was not handled: no answer.", notification.name.c_str());
    if (reply.outcome == Outcome::Refused) MOLLog("%s was refused: %s", notification.name.c_str(), why.c_str());
    return {reply.outcome == Outcome::Handled, reply.refusal.name, why, decodePropertyList(reply.joined)};
} catch (const std::invalid_argument& reason) {
    MOLLog("%s was not sent: the user information %s.", notification.name.c_str(), reason.what());
    return {false, wire::kInvalidPreferences, std::string("the user information ") + reason.what(), {}};
}

bool belongsTo(unsigned userId, BusPeer& peer, Clock::time_point deadline) {
    return peer.userId(deadline) == userId;
}

}  // namespace

/// An endpoint with a loop, and the thread that runs it.
class BusCommunicationCenter::OwnEnd {
public:
    explicit OwnEnd(BusEndpoint::Pong pong)
        : _stop(_loop, [this] { _loop.end(0); }),
          _bus(connectTo(Bus::Session, _loop, kPatience)),
          _endpoint(_bus.get(), {}, std::move(pong)) {
        // Another window may show the pane as well, and have it.
        requestName(_bus.get(), std::string(kPaneName), kPatience);
        _thread = std::thread([this] {
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_BLOCK, &all, nullptr);  // signals are the business of the program's own threads
            _loop.run();
        });
    }
    ~OwnEnd() {
        _stop.give();
        _thread.join();
    }

private:
    EventLoop _loop;
    const Nudge _stop;
    const BusConnection _bus;
    const BusEndpoint _endpoint;
    std::thread _thread;
};

BusCommunicationCenter::BusCommunicationCenter(Limits limits) : _limits(limits) {}

BusCommunicationCenter::~BusCommunicationCenter() = default;

void BusCommunicationCenter::setObserver(std::weak_ptr<VXCommunicationProtocol> observer) {
    const std::lock_guard lock(_mutex);
    _observer = std::move(observer);
}

void BusCommunicationCenter::createServerConnection() try {
    const std::lock_guard lock(_mutex);
    if (!_ownEnd) _ownEnd = std::make_unique<OwnEnd>([this] { return pong(); });
} catch (const std::exception& exception) {
    MOLLog("No own end on the session bus: %s", exception.what());
}

bool BusCommunicationCenter::pong() {
    std::shared_ptr<VXCommunicationProtocol> observer;
    {
        const std::lock_guard lock(_mutex);
        observer = _observer.lock();
    }
    return observer && observer->pong();
}

bool BusCommunicationCenter::pingDaemon() try {
    const auto deadline = Clock::now() + _limits.silence;
    return BusPeer(Bus::System, kDaemonName.data(), deadline).ping(deadline);
} catch (const std::exception&) {
    return false;
}

bool BusCommunicationCenter::pingAgentOfUser(unsigned userId) try {
    const auto deadline = Clock::now() + _limits.silence;
    BusPeer peer(Bus::Session, kUserAgentName.data(), deadline);
    return belongsTo(userId, peer, deadline) && peer.ping(deadline);
} catch (const std::exception&) {
    return false;
}

bool BusCommunicationCenter::postNotificationToDaemon(const Notification& notification) try {
    BusPeer peer(Bus::System, kDaemonName.data(), Clock::now() + _limits.silence);
    return post(peer, notification, _limits).isHandled;
} catch (const std::exception&) {
    return false;
}

EditsAnswer BusCommunicationCenter::postNotificationToDaemon(const Notification& notification, const Value& base) try {
    BusPeer peer(Bus::System, kDaemonName.data(), Clock::now() + _limits.silence);
    return post(peer, notification, _limits, base);
} catch (const std::exception&) {
    return {};
}

bool BusCommunicationCenter::postNotificationToAgentOfUser(const Notification& notification, unsigned userId) try {
    const auto deadline = Clock::now() + _limits.silence;
    BusPeer peer(Bus::Session, kUserAgentName.data(), deadline);
    return belongsTo(userId, peer, deadline) && post(peer, notification, _limits).isHandled;
} catch (const std::exception&) {
    return false;
}

}  // namespace quorel
