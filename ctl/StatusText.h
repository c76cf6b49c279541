#pragma once

#include <vector>

#include "model/Value.h"
#include "words/StatusText.h"

namespace quorel {

/// Whether all that is planned will happen, as far as the daemon knows. `status` as Status() tells it.
bool isWell(const Value& status);
/// How things stand: names, and what they stand for. `upcoming` as Upcoming() tells it, with
/// "Number" where the plan has them; `last` is the last outcome, absent where there is none.
std::vector<StatusField> statusFields(const Value& status, const Array& upcoming, const Array& pauses,
                                      const Value& last);

}  // namespace quorel
