#include "model/Lines.h"

#include <algorithm>

namespace quorel {

std::vector<std::string> linesIn(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string textOfLines(std::span<const std::string> lines) {
    std::string text;
    for (const std::string& line : lines) text.append(&line == &lines.front() ? "" : "\n").append(line);
    if (!lines.empty() && lines.back().empty()) text += '\n';  // else it would be none
    return text;
}

}  // namespace quorel
