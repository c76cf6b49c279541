#include "model/Utf8.h"

#include <algorithm>
#include <cstddef>

namespace quorel {

namespace {

bool isCharacter(char32_t character) {
    return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

}  // namespace

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
    valid = valid && character >= kLeast[length] && isCharacter(character);
    text.remove_prefix(valid ? length : 1);
    return valid ? character : kNoCharacter;
}

std::string_view takeAscii(std::string_view& text) {
    const auto end = std::find_if(text.begin(), text.end(), [](char c) { return c < 0x20 || c > 0x7E; });
    const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(taken.size());
    return taken;
}

bool appendCharacter(std::string& text, char32_t character) {
    if (!isCharacter(character)) return false;
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    const unsigned tail = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr char32_t kMarks[] = {0, 0xC0, 0xE0, 0xF0};
    put(kMarks[tail] | character >> 6 * tail);
    for (unsigned left = tail; left-- > 0;) put(0x80 | (character >> 6 * left & 0x3F));
    return true;
}

}  // namespace quorel
