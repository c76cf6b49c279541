#pragma once

#include <string_view>

#include "model/Value.h"

namespace quorel {

/// The user's persistent settings in the domain of the host application. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;
    virtual Value objectForKey(std::string_view key) const = 0;  ///< absent when not set
    virtual void setObjectForKey(const Value& value, std::string_view key) = 0;
    virtual void removeObjectForKey(std::string_view key) = 0;
    virtual void synchronize() = 0;  ///< writes to disk before returning
};

}  // namespace quorel
