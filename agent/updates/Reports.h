#pragma once

#include <optional>
#include <string>

#include "agent/warning/Message.h"
#include "kit/VXUpdateChecker.h"

namespace quorel {

/// Decides what the user is told of an update check. One thread.
class Reports {
public:
    /// Of the check that has just ended. Who asked for it by hand is told in any case; a periodic check speaks of
    /// a newer version only, and of each only once.
    std::optional<Message> report(const VXUpdateChecker& checker, bool succeeded, bool askedByHand);

private:
    std::string _newestTold;
};

}  // namespace quorel
