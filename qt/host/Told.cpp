#include "qt/host/Told.h"

#include <algorithm>

#include "model/Upcoming.h"
#include "model/Wire.h"

namespace quorel::qt {

namespace keys = wire::keys;

std::optional<Instant> Told::leftOutUntil(Instant due, const std::string& action) const {
    for (const Value& pause : pauses.array()) {
        const Instant until = pause[keys::kUntil].integer();
        if (pause[keys::kFrom].integer() <= due && due < until) return until;
    }
    const bool isLeftOut = std::ranges::any_of(upcoming.array(), [&](const Value& one) {
        return isSkipped(one) && one[keys::kDue].integer() == due && one[keys::kAction].text() == action;
    });
    return isLeftOut ? std::optional(due + 1) : std::nullopt;
}

}  // namespace quorel::qt
