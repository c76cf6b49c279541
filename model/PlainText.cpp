#include "model/PlainText.h"

#include <cstddef>

namespace quorel {

namespace {

constexpr std::size_t kMostCharacters = 120;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr char32_t kInvalid = 0xFFFD;

/// Takes one character off the front; kInvalid, and one byte, where there is none.
char32_t takeCharacter(std::string_view& text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first >> 5 == 6 ? 2 : first >> 4 == 14 ? 3 : first >> 3 == 30 ? 4 : 0;
    char32_t character = length < 2 ? first : first & (0x7Fu >> length);
    bool valid = length > 0 && length <= text.size();
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = byte(i) >> 6 == 2;
        character = character << 6 | (byte(i) & 0x3Fu);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    valid = valid && character >= kLeast[length] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(valid ? length : 1);
    return valid ? character : kInvalid;
}

/// Ends a line, moves a cursor, colours, or turns the direction of what follows.
bool isActive(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x61C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

std::string plainText(std::string_view text) {
    std::string plain;
    for (std::size_t count = 0; count < kMostCharacters && !text.empty(); ++count) {
        const std::string_view rest = text;
        const char32_t character = takeCharacter(text);
        const bool fit = character != kInvalid && !isActive(character);
        plain += fit ? rest.substr(0, rest.size() - text.size()) : kReplacement;
    }
    return plain;
}

}  // namespace quorel
