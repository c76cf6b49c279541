#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorel {

/// What the update feed says of the latest version.
struct UpdateRecord {
    std::string version;  ///< isVersion
    std::string pageUrl;  ///< isWebAddress
};

/// Reads the feed's answer, a property list. Nothing when a part is missing or unacceptable. Any thread.
std::optional<UpdateRecord> parseUpdateRecord(std::string_view bytes);

/// Whether a text is an absolute http or https address that can be handed to a browser: a host, no user name or
/// password (they serve to disguise the host), only the characters that addresses consist of, at most 2048 bytes.
bool isWebAddress(std::string_view text);

/// Whether the feed may be asked at this address: https anywhere, since the answer decides which page the user is
/// sent to; http only where nothing leaves this computer ("localhost", 127.0.0.0/8, ::1).
bool isFeedAddress(std::string_view text);

/// isFeedAddress, and plain http.
bool isLoopbackHttpAddress(std::string_view text);

}  // namespace quorel
