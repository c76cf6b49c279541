#pragma once

#include <chrono>
#include <memory>
#include <mutex>

#include "kit/VXCommunicationCenter.h"

namespace quorel {

/// The channel over D-Bus: the daemon on the system bus, the agent and this program's own end on the session bus.
/// Each operation connects anew, so that a bus which has been restarted is found again. Pings of the own end are
/// answered on a thread of its own: the program may be busy, with its user's hand on a menu for one.
class BusCommunicationCenter : public VXCommunicationCenter {
public:
    struct Limits {
        std::chrono::milliseconds silence{1000};  ///< after which a program counts as not running
        /// For a notification to be handled: somebody may have to type a password first.
        std::chrono::milliseconds handling{120'000};
    };

    BusCommunicationCenter() : BusCommunicationCenter(Limits{}) {}
    explicit BusCommunicationCenter(Limits limits);
    ~BusCommunicationCenter() override;

    void setObserver(std::weak_ptr<VXCommunicationProtocol> observer) override;
    void createServerConnection() override;

    bool pingDaemon() override;
    /// Only an agent that runs as that user counts.
    bool pingAgentOfUser(unsigned userId) override;

    bool postNotificationToDaemon(const Notification& notification) override;
    EditsAnswer postNotificationToDaemon(const Notification& notification, const Value& base) override;
    bool postNotificationToAgentOfUser(const Notification& notification, unsigned userId) override;

private:
    class OwnEnd;
    bool pong();

    const Limits _limits;
    std::mutex _mutex;
    std::weak_ptr<VXCommunicationProtocol> _observer;
    std::unique_ptr<OwnEnd> _ownEnd;
};

}  // namespace quorel
