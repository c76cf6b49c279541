#pragma once

#include <string>
#include <string_view>

namespace quorel {

/// When a failure of power can no longer bring the old file back. By now takes a sync more.
enum class Lasts { kByNow, kSoon };

/// Puts a file of these bytes in place of the old one: at any moment, a power failure included, there is the one or the
/// other whole. Readable by everybody. Makes the folder where it is missing. Answers with the reason when it failed, in
/// which case the old file is in place, and with an empty text otherwise.
std::string replaceFile(const std::string& path, std::string_view bytes, Lasts lasts = Lasts::kByNow);
/// Removes what an interrupted replacement has left behind.
void removeLeftovers(const std::string& path);

}  // namespace quorel
