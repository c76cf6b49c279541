#pragma once

#include <optional>
#include <string>

#include "scheduler/Calendar.h"
#include "scheduler/Instant.h"

namespace quorel {

/// What people say of an instant: a time ("18:00"), a day ("tomorrow", "fri", "2026-12-24"), or both. A time alone is
/// the next such after an instant, the name of a day the next of that name; a day alone is meant at `usual` minutes.
/// Nothing where it is none of these.
std::optional<Instant> momentOf(const std::string& words, Instant after, int usual, const Calendar& calendar);

}  // namespace quorel
