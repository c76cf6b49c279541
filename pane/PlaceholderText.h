#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorel {

/// The format with `text` in the place of its first "%@"; nothing in the text is interpreted. A missing text shows as
/// the platform's null marker.
inline std::string textWithPlaceholder(std::string format, const std::optional<std::string>& text) {
    constexpr std::string_view kPlaceholder = "%@";
    const auto place = format.find(kPlaceholder);
    if (place == std::string::npos) return format;
    return format.replace(place, kPlaceholder.size(), text.value_or("(null)"));
}

}  // namespace quorel
