#pragma once

#include "model/Value.h"

namespace quorel {

// What can be said to an occurrence, as the daemon's Upcoming() tells it.

/// It can be skipped: it is not left out already, and has not begun.
bool canBeSkipped(const Value& upcoming);
bool isSkipped(const Value& upcoming);
/// The computer is kept awake by it now; skipped, it lets go.
bool keepsAwake(const Value& upcoming);

}  // namespace quorel
