#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "model/Value.h"

namespace quorel {

struct Notification {
    std::string name;
    std::optional<std::string> object;
    Value userInfo;  ///< a dictionary, or absent
};

/// Delivers within the process, synchronously, on the posting thread.
class NotificationCenter {
public:
    using Observer = std::function<void(const Notification&)>;
    virtual ~NotificationCenter() = default;
    /// Observes a name from any sender, for good: there is no removal.
    virtual void addObserver(std::string_view name, Observer observer) = 0;
    virtual void postNotification(const Notification& notification) = 0;
};

}  // namespace quorel
