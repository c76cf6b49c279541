#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "model/Value.h"

namespace quorel {

/// The value as JSON on one line. What JSON has no form for is a dictionary of one key: {"$date":
/// "2027-03-01T23:00:00Z"},
/// {"$data": "…"} in Base64, {"$real": "nan"}; a dictionary with a key that begins with "$" is {"$dictionary": …}.
/// Reals always have a point or an exponent. What is absent is null.
std::string jsonText(const Value& value);

struct JsonReading {
    Value value;            ///< absent where there is a fault
    std::size_t fault = 0;  ///< bytes in front of what cannot be read
};
/// The same way back. null is no value of a property list, and texts are such as property lists can hold.
JsonReading readJson(std::string_view text);

}  // namespace quorel
