#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorel {

// The plan as text is written in words as a shell takes them, so that a line of it can be typed there.

struct Word {
    std::string text;        ///< unquoted
    std::size_t column = 1;  ///< where it begins: characters from 1
};

struct SplitLine {
    std::vector<Word> words;
    std::size_t unclosed = 0;  ///< the column of a quotation mark that nothing closes; 0: there is none
};

/// Splits at blanks. Quoted is what stands behind "\", in '…', in "…" ("\" in front of ", \, $ and `) and in $'…' (\n,
/// \t, \r, \\, \', \xHH). "#" at the beginning of a word begins a comment.
SplitLine splitLine(std::string_view line);
/// The word such that splitLine and a shell read it so.
std::string shellWord(std::string_view text);

/// How many characters of UTF-8 a text has.
std::size_t characterCount(std::string_view text);

}  // namespace quorel
