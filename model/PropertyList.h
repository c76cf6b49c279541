#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "model/Value.h"

namespace quorel {

/// Limits on property lists from outside: what is larger or deeper is refused before it is unfolded.
inline constexpr std::size_t kMaximumPropertyListBytes = std::size_t{16} * 1024 * 1024;
inline constexpr int kMaximumPropertyListDepth = 64;

/// XML or binary, within the limits; absent otherwise. `maximumBytes` holds for what a binary list unfolds to, too.
/// Any thread, never throws.
Value decodePropertyList(std::string_view bytes, std::size_t maximumBytes = kMaximumPropertyListBytes);

/// XML. Nothing when the value is absent, holds something absent, passes the depth or `maximumBytes`, or holds a text
/// that XML cannot carry or a date outside the years 1 to 9999. Dates are written in whole seconds. Any thread.
std::optional<std::string> encodePropertyList(const Value& value, std::size_t maximumBytes = kMaximumPropertyListBytes);

}  // namespace quorel
