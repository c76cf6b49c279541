#pragma once

#include <string>
#include <string_view>

namespace quorel {

// What came from elsewhere, fit for whoever shows it. In place of each character that could act where it is shown
// stands U+FFFD: controls, line and paragraph separators, marks and overrides of direction; likewise of noncharacters,
// which the bus refuses, and of what is no UTF-8.

bool isPlain(char32_t character);

/// For a place in a sentence: one line of at most 120 characters.
std::string plainText(std::string_view text);
/// For a journal: one line, however long.
std::string plainLine(std::string_view text);
/// For the bus: however long, with its line ends and tabs.
std::string plainLines(std::string_view text);

/// Reads as the same where markup is understood.
std::string escapedMarkup(std::string_view text);
/// For where some show markup and others what would escape it: it does not look like any.
std::string withoutMarkup(std::string_view text);

}  // namespace quorel
