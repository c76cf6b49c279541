#pragma once

#include <string_view>

namespace quorel {

/// Writes one line to the product's log. The format is printf's. Any thread; never fails.
[[gnu::format(printf, 1, 2)]] void MOLLog(const char* format, ...);

/// Where the lines go; the standard error stream until a sink is installed. Install before threads start.
using MOLLogSink = void (*)(std::string_view line);
void setMOLLogSink(MOLLogSink sink);

}  // namespace quorel
