#pragma once

#include <string>

#include "scheduler/Outcome.h"

namespace quorel {

/// What the journal says of an outcome. Times are those of the present time zone.
std::string sentenceOf(const Outcome& outcome);

}  // namespace quorel
