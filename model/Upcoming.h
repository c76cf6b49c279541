#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "model/Value.h"

namespace quorel {

// What can be said to an occurrence, as the daemon's Upcoming() tells it.

/// It can be skipped: it is not left out already, and has not begun.
bool canBeSkipped(const Value& upcoming);
bool isSkipped(const Value& upcoming);
/// The computer is kept awake by it now; skipped, it lets go.
bool keepsAwake(const Value& upcoming);

/// The pause that goes on at an instant, of those that the daemon's Pauses() tells; of several the one that ends last.
/// Absent where there is none.
Value pauseAround(const Array& pauses, std::int64_t instant);

/// What leaves out the occurrence of an action at an instant, a pause or a skip: until then. Nothing where it stands.
std::optional<std::int64_t> leftOutUntil(const Array& upcoming, const Array& pauses, std::int64_t due,
                                         const std::string& action);

}  // namespace quorel
