#pragma once

namespace quorel {

class VXCommunicationCenter;

/// The controller's face to the communication center.
class VXCommunicationProtocol {
public:
    virtual ~VXCommunicationProtocol() = default;
    virtual bool pong() const = 0;  ///< "I am alive"; any thread
    virtual VXCommunicationCenter* communicationCenter() const = 0;
};

}  // namespace quorel
