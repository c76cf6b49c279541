#pragma once

#include <optional>
#include <string>

#include "model/Value.h"
#include "scheduler/World.h"

namespace quorel::qt {

/// What the daemon has told last, as its methods of these names answer, and the system of kinds of sleep.
struct Told {
    bool isThere = false;  ///< a daemon runs
    Value upcoming, outcomes, status, pauses;
    DeniedKinds deniedKinds;

    /// What leaves out the occurrence of this action at this instant, a pause or a skip: until then. Nothing where it
    /// stands.
    std::optional<Instant> leftOutUntil(Instant due, const std::string& action) const;
};

}  // namespace quorel::qt
