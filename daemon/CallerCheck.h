#pragma once

#include <optional>
#include <string>

namespace quorel {

enum class Verdict { Allowed, Refused, Dismissed, NobodyToAsk };

/// The user behind a unique name of the system bus, as the bus vouches for it; nothing when that caller has gone.
std::optional<unsigned> userIdOfCaller(const std::string& busName);

/// Whether the process behind a unique bus name may change the preferences: root may, about everybody else polkit
/// decides, which may ask a person. Blocks for up to some minutes; any thread, never throws.
Verdict checkCaller(const std::string& busName, unsigned userId);

}  // namespace quorel
