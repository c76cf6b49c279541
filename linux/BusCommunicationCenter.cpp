#include "linux/BusCommunicationCenter.h"

#include <string>
#include <utility>

#include "kit/MOLLog.h"
#include "linux/BusPeer.h"
#include "model/Names.h"
#include "model/PropertyList.h"
#include "pane/VXCommunicationProtocol.h"

namespace quorel {

namespace {

using Clock = BusPeer::Clock;

bool post(BusPeer& peer, const Notification& notification, const BusCommunicationCenter::Limits& limits) {
    std::string userInfo;
    if (notification.userInfo.isPresent()) {
        auto encoded = encodePropertyList(notification.userInfo);
        if (!encoded) {
            MOLLog("%s: the user information cannot be sent.", notification.name.c_str());
            return false;
        }
        userInfo = std::move(*encoded);
    }
    std::string text;
    const auto outcome = peer.post(notification.name, notification.object.value_or(""), userInfo, limits.silence,
                                   Clock::now() + limits.handling, text);
    if (outcome == BusPeer::Outcome::Silent) MOLLog("%s was not handled: no answer.", notification.name.c_str());
    if (outcome == BusPeer::Outcome::Refused) MOLLog("%s was refused: %s", notification.name.c_str(), text.c_str());
    return outcome == BusPeer::Outcome::Handled;
}

bool belongsTo(unsigned userId, BusPeer& peer, Clock::time_point deadline) {
    return peer.userId(deadline) == userId;
}

}  // namespace

BusCommunicationCenter::~BusCommunicationCenter() = default;

void BusCommunicationCenter::setObserver(std::weak_ptr<VXCommunicationProtocol> observer) {
    const std::lock_guard lock(_mutex);
    _observer = std::move(observer);
}

void BusCommunicationCenter::createServerConnection() {
    const std::lock_guard lock(_mutex);
    if (_endpoint) return;
    BusEndpoint::Options options;
    options.bus = Bus::Session;
    options.name = kPaneName;
    options.nameRequired = false;  // another window may show the pane as well
    options.pong = [this] {
        std::shared_ptr<VXCommunicationProtocol> observer;
        {
            const std::lock_guard guard(_mutex);
            observer = _observer.lock();
        }
        return observer && observer->pong();
    };
    std::string error;
    _endpoint = BusEndpoint::open(std::move(options), error);
    if (!_endpoint) MOLLog("No own end on the session bus: %s", error.c_str());
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
    return post(peer, notification, _limits);
} catch (const std::exception&) {
    return false;
}

bool BusCommunicationCenter::postNotificationToAgentOfUser(const Notification& notification, unsigned userId) try {
    const auto deadline = Clock::now() + _limits.silence;
    BusPeer peer(Bus::Session, kUserAgentName.data(), deadline);
    return belongsTo(userId, peer, deadline) && post(peer, notification, _limits);
} catch (const std::exception&) {
    return false;
}

}  // namespace quorel
