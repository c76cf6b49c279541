#pragma once

#include <memory>
#include <string>

#include "model/Value.h"
#include "platform/NotificationCenter.h"

namespace quorel {

/// What the communication center asks of the object that stands for this program.
/// `pong` may be asked on any thread.
class VXCommunicationProtocol;

/// What the daemon made of edits.
struct EditsAnswer {
    bool isHandled = false;
    std::string error;  ///< the name of what it refused with; empty where it has not answered
    std::string text;   ///< why, for people
    Value joined;       ///< "Others" and "Both", as docs/protocol.md says
};

/// The channel between the product's programs: pings and notifications to the daemon and to a user's agent.
/// Every operation may be called from any thread, blocks, and reports failure by its result alone.
class VXCommunicationCenter {
public:
    virtual ~VXCommunicationCenter() = default;

    /// The instance that the composition root installed, else one that reaches nobody; never null.
    static VXCommunicationCenter* sharedInstance();
    /// Not owned; null for none. Install before the first pane is created, and for good.
    static void setSharedInstance(VXCommunicationCenter* instance);

    /// The observer's `pong` answers the pings of other programs. Not owned.
    virtual void setObserver(std::weak_ptr<VXCommunicationProtocol> observer) = 0;
    /// Opens this program's own end, on which it can be pinged. Failure leaves the other operations usable.
    virtual void createServerConnection() = 0;

    /// At once false when nobody has the daemon's name; false after one second when its owner is silent.
    /// Never starts the program.
    virtual bool pingDaemon() = 0;
    virtual bool pingAgentOfUser(unsigned userId) = 0;

    /// Returns when the receiver has handled the notification, has refused it, or has fallen silent.
    /// True only in the first case.
    virtual bool postNotificationToDaemon(const Notification& notification) = 0;
    /// The same of edited preferences, with what the user information would have been had nobody edited it: the daemon
    /// joins the edits with those of others. A daemon of a version that does not know how is sent nothing.
    virtual EditsAnswer postNotificationToDaemon(const Notification& notification, const Value& base) = 0;
    virtual bool postNotificationToAgentOfUser(const Notification& notification, unsigned userId) = 0;
};

}  // namespace quorel
