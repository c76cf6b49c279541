#include "model/Upcoming.h"

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
    for (const Value& one : pauses)
        if (one[keys::kFrom].integer() <= instant && instant < one[keys::kUntil].integer()) return one;
    return {};
}

}  // namespace quorel
