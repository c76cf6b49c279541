#include "ctl/Page.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string_view>

#include "model/PlainText.h"

namespace quorel {

namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 20;  // narrower text is no text any more

/// How many columns of a terminal it takes.
std::size_t widthOf(std::string_view text) {
    std::size_t width = 0;
    std::mbstate_t state{};
    while (!text.empty()) {
        wchar_t character = 0;
        const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
        if (length == 0 || length > text.size()) return width + text.size();  // not of this locale
        width += static_cast<std::size_t>(std::max(wcwidth(character), 0));
        text.remove_prefix(length);
    }
    return width;
}

void put(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void pad(std::size_t width) {
    put(std::string(width, ' '));
}

}  // namespace

Page::Page() : _isTerminal(isatty(STDOUT_FILENO)) {
    const char* terminal = std::getenv("TERM");
    const char* noColours = std::getenv("NO_COLOR");
    _hasColours = _isTerminal && terminal && terminal != std::string_view("dumb") && (!noColours || !*noColours);
    winsize size{};
    if (_isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) _width = size.ws_col;
}

std::string Page::coloured(Colour colour, const std::string& text) const {
    if (!_hasColours || colour == Colour::kNone) return text;
    const char* begin = colour == Colour::kGood      ? "\033[0;1;32m"
                        : colour == Colour::kWarning ? "\033[0;1;33m"
                                                     : "\033[2m";
    return begin + text + "\033[0m";
}

void Page::headline(Colour colour, bool filled, const std::string& text) const {
    const bool unicode = nl_langinfo(CODESET) == std::string_view("UTF-8");
    put(coloured(colour, unicode ? (filled ? "●" : "○") : "*") + " ");
    line(text);
}

void Page::line(const std::string& text) const {
    put(plainLine(text) + "\n");
}

void Page::paragraph(const std::string& text) const {
    wrapped(plainLine(text), 0);
}

void Page::fields(const std::vector<std::pair<std::string, std::string>>& fields) const {
    std::size_t width = 0;
    for (const auto& field : fields) width = std::max(width, widthOf(field.first));
    const bool isBeside = !_isTerminal || kGap + width + 1 + kNarrowest <= _width;
    for (const auto& [name, text] : fields) {
        pad(isBeside ? kGap + width - widthOf(name) : kGap);
        put(name);
        put(isBeside || name.empty() ? " " : "\n" + std::string(kGap + 1, ' '));
        wrapped(plainLine(text), kGap + 1 + (isBeside ? width : 0));
    }
}

void Page::table(std::vector<std::vector<std::string>> rows) const {
    for (auto& row : rows)
        for (std::string& cell : row) cell = plainLine(cell);
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        if (widths.size() < row.size()) widths.resize(row.size());
        for (std::size_t i = 0; row.size() > 1 && i < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
    }
    for (const auto& row : rows) {
        std::size_t column = row.size() > 1 ? 0 : widths.front() + kGap;
        pad(column);
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            put(row[i]);
            pad(widths[i] + kGap - widthOf(row[i]));
            column += widths[i] + kGap;
        }
        wrapped(row.back(), column);
    }
}

void Page::wrapped(const std::string& text, std::size_t column) const {
    const std::size_t room = _width > column + kNarrowest ? _width - column : kNarrowest;
    std::string_view rest = text;
    std::size_t used = 0;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(' ', 1));  // with the blank in front
        if (_isTerminal && used > 0 && used + widthOf(word) > room) {
            put("\n");
            pad(column);
            used = 0;
        }
        const std::string_view shown = used == 0 && word.starts_with(' ') ? word.substr(1) : word;
        put(shown);
        used += widthOf(shown);
        rest.remove_prefix(word.size());
    }
    put("\n");
}

}  // namespace quorel
