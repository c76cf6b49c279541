#pragma once

#include <string>

#include "model/Value.h"

namespace quorel {

/// The value as JSON on one line. Dates and data have no form there and are null; so is what is absent.
std::string jsonText(const Value& value);

}  // namespace quorel
