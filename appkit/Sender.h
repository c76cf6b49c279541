#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "appkit/Views.h"

namespace quorel::appkit {

/// A control as the sender of an action, kept while somebody remembers it.
class Sender : public Object {
public:
    explicit Sender(NSObject *sender) : _sender(sender) {}

private:
    Retained<NSObject> _sender;
};

/// Null for nil: an action sent by code.
inline std::shared_ptr<const Object> senderFrom(id sender) {
    return wrapped<Sender>(static_cast<NSObject *>(sender));
}

}  // namespace quorel::appkit
