#pragma once

#include <string>
#include <string_view>

#include "model/Value.h"

namespace quorel {

/// The text form of a property list, in which GNUstep writes bundles' information dictionaries: dictionaries, arrays
/// and texts, in UTF-8, with comments. Absent for whatever is malformed or deeper than kMaximumPropertyListDepth, and
/// for data, which no such dictionary needs. Of a key that stands twice the last value counts, and `doubledKey`, where
/// it is given, names the first such key. The caller bounds the size. Any thread, never throws but for memory.
Value decodePropertyListText(std::string_view bytes, std::string* doubledKey = nullptr);

}  // namespace quorel
