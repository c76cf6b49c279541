#include "planning/ShellWords.h"

#include <algorithm>
#include <charconv>

#include "model/PlainText.h"
#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kEscaped = "ntr", kEscapes = "\n\t\r";

class Splitter {
public:
    explicit Splitter(std::string_view line) : _line(line) {}

    SplitLine split() {
        SplitLine result;
        while (true) {
            _place = std::min(_line.find_first_not_of(kBlanks, _place), _line.size());
            if (_place == _line.size() || _line[_place] == '#') return result;
            Word word{{}, characterCount(_line.substr(0, _place)) + 1};
            const std::size_t unclosed = readWord(word.text);
            if (unclosed < _line.size()) result.unclosed = characterCount(_line.substr(0, unclosed)) + 1;
            if (result.unclosed > 0) return result;
            result.words.push_back(std::move(word));
        }
    }

private:
    /// Where a quotation begins that is not closed; the end where all is well.
    std::size_t readWord(std::string& text) {
        while (_place < _line.size() && kBlanks.find(_line[_place]) == std::string_view::npos) {
            const std::size_t begin = _place;
            const std::string_view rest = _line.substr(_place);
            bool isClosed = true;
            if (rest.starts_with("$'")) {
                isClosed = readQuoted(text, 2, '\'', &Splitter::readEscape);
            } else if (rest.starts_with('\'')) {
                isClosed = readQuoted(text, 1, '\'', nullptr);
            } else if (rest.starts_with('"')) {
                isClosed = readQuoted(text, 1, '"', &Splitter::readBackslash);
            } else {
                _place += rest.starts_with('\\') && rest.size() > 1 ? 1 : 0;
                text += _line[_place++];
            }
            if (!isClosed) return begin;
        }
        return _line.size();
    }

    bool readQuoted(std::string& text, std::size_t marks, char end, void (Splitter::*escape)(std::string&)) {
        _place += marks;
        while (_place < _line.size() && _line[_place] != end) {
            if (escape && _line[_place] == '\\' && _place + 1 < _line.size())
                (this->*escape)(text);
            else
                text += _line[_place++];
        }
        return _place++ < _line.size();
    }

    void readBackslash(std::string& text) {
        if (std::string_view("\"\\$`").find(_line[_place + 1]) != std::string_view::npos) ++_place;
        text += _line[_place++];
    }

    void readEscape(std::string& text) {
        const char name = _line[++_place];
        unsigned code = 0;
        const char* digits = _line.data() + _place + 1;
        const char* end = _line.data() + std::min(_line.size(), _place + 3);
        const std::size_t known = kEscaped.find(name);
        text += known == std::string_view::npos ? name : kEscapes[known];
        ++_place;
        if (name != 'x' || std::from_chars(digits, end, code, 16).ptr != end || end != digits + 2) return;
        text.back() = static_cast<char>(code);
        _place += 2;
    }

    const std::string_view _line;
    std::size_t _place = 0;
};

/// Whether all of it may be shown as it is.
bool isShown(std::string_view text) {
    while (takeAscii(text), !text.empty())
        if (!isPlain(takeCharacter(text))) return false;
    return true;
}

std::string escaped(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result = "$'";
    while (!text.empty()) {
        std::string_view character = text;
        const bool isFit = isPlain(takeCharacter(text));
        character.remove_suffix(text.size());
        const std::size_t known = kEscapes.find(character[0]);
        if (known != std::string_view::npos)
            result.append({'\\', kEscaped[known]});
        else if (isFit)
            result.append(character == "'" || character == "\\" ? "\\" : "") += character;
        else
            for (const char c : character)
                result.append({'\\', 'x', kDigits[static_cast<unsigned char>(c) >> 4], kDigits[c & 15]});
    }
    return result + "'";
}

}  // namespace

SplitLine splitLine(std::string_view line) {
    return Splitter(line).split();
}

std::string shellWord(std::string_view text) {
    if (!isShown(text) || text.find('\'') != std::string_view::npos) return escaped(text);
    const auto isBare = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               static_cast<unsigned char>(c) >= 0x80 ||
               std::string_view("+,-./:=@_%").find(c) != std::string_view::npos;
    };
    if (!text.empty() && std::ranges::all_of(text, isBare)) return std::string(text);
    const std::size_t value = text.find('=') + 1;  // text='Time for bed' reads better than 'text=Time for bed'
    if (value > 0 && std::ranges::all_of(text.substr(0, value), isBare))
        return std::string(text.substr(0, value)) + "'" + std::string(text.substr(value)) + "'";
    return "'" + std::string(text) + "'";
}

std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace quorel
