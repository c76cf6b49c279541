#pragma once

#include <compare>
#include <string_view>

namespace quorel {

/// Whether a text can take part in the order: printable ASCII, at most 64 bytes, a digit first.
bool isVersion(std::string_view text);

/// The order of versions, "2.10" after "2.9". Numbers may be of any length; missing ones count as 0, so "2" equals
/// "2.0". What follows the numbers names a pre-release and comes before the release itself: "2.0b1", "2.0-rc.1"
/// before "2.0". Pre-release texts compare run by run, numbers by value and before words, words without regard to
/// case, the shorter one first. From "+" on a text says nothing about the order. Any thread.
std::weak_ordering compareVersions(std::string_view a, std::string_view b);

}  // namespace quorel
