#pragma once

#include <string>
#include <string_view>

namespace quorel {

/// What takeCharacter answers where there is none.
inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

/// Takes one character off the front of a text that is not empty; where its bytes are no UTF-8, kNoCharacter and one
/// byte.
char32_t takeCharacter(std::string_view& text);

/// Takes the printable ASCII off the front, of which most texts consist: quicker than one by one. Perhaps none.
std::string_view takeAscii(std::string_view& text);

/// False, and nothing added, for what is no character: surrogates, and beyond U+10FFFF.
bool appendCharacter(std::string& text, char32_t character);

/// The 66 that never stand for anything. XML carries most of them, the bus none.
constexpr bool isNoncharacter(char32_t character) {
    return (character >= 0xFDD0 && character <= 0xFDEF) || (character & 0xFFFE) == 0xFFFE;
}

}  // namespace quorel
