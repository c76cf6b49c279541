#include "model/PlainText.h"

#include <cstddef>

#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::size_t kMostCharacters = 120;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kLineEndsAndTabs = "\n\r\t";

/// Ends a line, moves a cursor, colours, or turns the direction of what follows.
bool isActive(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x61C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

std::string plain(std::string_view text, std::string_view kept, std::size_t most = std::string_view::npos) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t count = 0; count < most && !text.empty(); ++count) {
        const std::string_view rest = text;
        const char32_t character = takeCharacter(text);
        const bool fit = kept.find(rest.front()) != std::string_view::npos || isPlain(character);
        result += fit ? rest.substr(0, rest.size() - text.size()) : kReplacement;
    }
    return result;
}

}  // namespace

bool isPlain(char32_t character) {
    return character != kNoCharacter && !isActive(character) && !isNoncharacter(character);
}

std::string plainText(std::string_view text) {
    return plain(text, {}, kMostCharacters);
}

std::string plainLine(std::string_view text) {
    return plain(text, {});
}

std::string plainLines(std::string_view text) {
    return plain(text, kLineEndsAndTabs);
}

std::string escapedMarkup(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

std::string withoutMarkup(std::string_view text) {
    std::string result;
    for (const char c : text) result += c == '<' ? std::string_view("‹") : std::string_view(&c, 1);
    return result;
}

}  // namespace quorel
