#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorel {

// Words that are stored one a line, as a program's arguments are.

/// A line end ends a line: behind the last one no other begins.
std::vector<std::string> linesIn(std::string_view text);
/// The text in which linesIn finds these; none of them has a line end.
std::string textOfLines(std::span<const std::string> lines);

}  // namespace quorel
