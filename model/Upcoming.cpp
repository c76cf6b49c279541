#include "model/Upcoming.h"

#include <algorithm>
#include <string_view>

#include "model/Wire.h"

namespace quorel {

namespace keys = wire::keys;

bool canBeSkipped(const Value& upcoming) {
    const std::string_view step = upcoming[keys::kStep].text();
    return step != wire::step::kSkipped && step != wire::step::kRunning && step != wire::step::kActing &&
           !upcoming[keys::kToken].text().empty();
}

bool isSkipped(const Value& upcoming) {
    return upcoming[keys::kStep].text() == wire::step::kSkipped;
}

bool keepsAwake(const Value& upcoming) {
    return upcoming[keys::kStep].text() == wire::step::kRunning && upcoming[keys::kUntil].isPresent();
}

Value pauseAround(const Array& pauses, std::int64_t instant) {
    Value last;
    for (const Value& one : pauses) {
        const std::int64_t until = one[keys::kUntil].integer();
        const bool goesOn = one[keys::kFrom].integer() <= instant && instant < until;
        if (goesOn && (last.isAbsent() || last[keys::kUntil].integer() < until)) last = one;
    }
    return last;
}

std::optional<std::int64_t> leftOutUntil(const Array& upcoming, const Array& pauses, std::int64_t due,
                                         const std::string& action) {
    if (const Value pause = pauseAround(pauses, due); pause.isPresent()) return pause[keys::kUntil].integer();
    const bool isLeftOut = std::ranges::any_of(upcoming, [&](const Value& one) {
        return isSkipped(one) && one[keys::kDue].integer() == due && one[keys::kAction].text() == action;
    });
    return isLeftOut ? std::optional(due + 1) : std::nullopt;
}

}  // namespace quorel
