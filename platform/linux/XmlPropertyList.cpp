#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "platform/linux/PropertyList.h"
#include "platform/linux/PropertyListContent.h"

namespace quorel {

namespace {

constexpr std::string_view kSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

template <class Number, class... Base>
bool readWhole(std::string_view text, Number& number, Base... base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    return error == std::errc() && end == text.data() + text.size();
}

std::optional<Value> integerOf(std::string_view text) {
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    if (!readWhole(text, magnitude, hexadecimal ? 16 : 10)) return {};
    const std::uint64_t limit = (std::uint64_t{1} << 63) - (negative ? 0 : 1);
    if (magnitude > limit) return {};
    return Value(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}

std::optional<Value> realOf(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with("+-")) return {};
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    if (!readWhole(text, number)) return {};
    return Value(number);
}

/// "2001-01-01T00:00:00Z"
std::optional<Value> calendarDateOf(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    text = trimmed(text);
    if (text.size() != kForm.size()) return {};
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        const bool fits = kForm[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == kForm[i];
        if (!fits) return {};
    }
    const auto number = [&](std::size_t at, std::size_t length) {
        int digits = 0;
        readWhole(text.substr(at, length), digits);
        return digits;
    };
    const auto month = std::chrono::month(static_cast<unsigned>(number(5, 2)));
    const auto day = std::chrono::day(static_cast<unsigned>(number(8, 2)));
    const auto date = std::chrono::year(number(0, 4)) / month / day;
    const int hour = number(11, 2), minute = number(14, 2), second = number(17, 2);
    if (number(0, 4) < 1 || !date.ok() || hour > 23 || minute > 59 || second > 59) return {};
    const auto time = std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                      std::chrono::seconds(second);
    return Value(dateOf(std::chrono::sys_seconds(time)));
}

std::optional<Value> dataOf(std::string_view text) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    static const auto kDigitValues = [&] {
        std::array<std::int8_t, 256> values;
        values.fill(-1);
        for (std::size_t i = 0; i < kDigits.size(); ++i)
            values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::int8_t>(i);
        return values;
    }();
    Data data;
    std::uint32_t bits = 0;
    unsigned digits = 0, padding = 0;
    for (const char c : text) {
        if (kSpace.find(c) != std::string_view::npos) continue;
        const int value = kDigitValues[static_cast<unsigned char>(c)];
        if (c == '=') {
            ++padding;
            continue;
        }
        if (value < 0 || padding > 0) return {};
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        if (++digits % 4 == 0)
            for (const unsigned shift : {16U, 8U, 0U}) data.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    const unsigned left = digits % 4;
    if (left == 1 || padding != (4 - left) % 4) return {};
    if (left == 2) data.push_back(static_cast<std::uint8_t>(bits >> 4));
    if (left == 3) {
        data.push_back(static_cast<std::uint8_t>(bits >> 10));
        data.push_back(static_cast<std::uint8_t>(bits >> 2));
    }
    return Value(std::move(data));
}

struct Tag {
    std::string_view name;
    bool closes = false;  ///< </name>
    bool empty = false;   ///< <name/>
};

/// Reads the little of XML that property lists are made of. A document type cannot declare anything.
class XmlReader {
public:
    explicit XmlReader(std::string_view bytes) : _rest(bytes) {}

    std::optional<Value> read() {
        if (_rest.starts_with("\xef\xbb\xbf")) _rest.remove_prefix(3);
        const auto root = nextTag();
        if (!root || root->name != "plist" || root->closes || root->empty) return {};
        const auto first = nextTag();
        if (!first) return {};
        auto value = element(*first, 1);
        if (!value || !closing("plist") || !skipToTag() || !_rest.empty()) return {};
        return value;
    }

private:
    /// Past white space, comments and declarations. False when something else stands there.
    bool skipToTag() {
        for (;;) {
            _rest.remove_prefix(std::min(_rest.find_first_not_of(kSpace), _rest.size()));
            if (_rest.starts_with("<!--")) {
                if (!skipPast("-->")) return false;
            } else if (_rest.starts_with("<?")) {
                if (!skipPast("?>")) return false;
            } else if (_rest.starts_with("<!DOCTYPE")) {
                if (_rest.substr(0, _rest.find('>')).find('[') != std::string_view::npos || !skipPast(">"))
                    return false;
            } else {
                return _rest.empty() || (_rest.starts_with('<') && !_rest.starts_with("<!"));
            }
        }
    }

    bool skipPast(std::string_view end) {
        const std::size_t place = _rest.find(end);
        if (place == std::string_view::npos) return false;
        _rest.remove_prefix(place + end.size());
        return true;
    }

    std::optional<Tag> nextTag() {
        if (!skipToTag() || _rest.empty()) return {};
        _rest.remove_prefix(1);
        Tag tag;
        tag.closes = _rest.starts_with('/');
        if (tag.closes) _rest.remove_prefix(1);
        const std::size_t nameEnd = _rest.find_first_of(" \t\r\n/>");
        if (nameEnd == std::string_view::npos || nameEnd == 0) return {};
        tag.name = _rest.substr(0, nameEnd);
        std::size_t end = nameEnd;
        for (char quote = 0; end < _rest.size() && (quote || _rest[end] != '>'); ++end) {
            if (quote ? _rest[end] == quote : _rest[end] == '"' || _rest[end] == '\'')
                quote = quote ? '\0' : _rest[end];
        }
        if (end == _rest.size()) return {};
        tag.empty = _rest[end - 1] == '/';
        _rest.remove_prefix(end + 1);
        return tag;
    }

    bool closing(std::string_view name) {
        const auto tag = nextTag();
        return tag && tag->closes && tag->name == name;
    }

    std::optional<Value> element(const Tag& tag, int depth) {
        if (tag.closes) return {};
        if (tag.name == "array" || tag.name == "dict") {
            if (depth > kMaximumPropertyListDepth) return {};
            return tag.name == "array" ? array(tag, depth) : dictionary(tag, depth);
        }
        const auto text = content(tag);
        if (!text) return {};
        if (tag.name == "string") return _shared.text(*text);
        if (tag.name == "integer") return integerOf(*text);
        if (tag.name == "real") return realOf(*text);
        if (tag.name == "date") return calendarDateOf(*text);
        if (tag.name == "data") return dataOf(*text);
        if ((tag.name == "true" || tag.name == "false") && trimmed(*text).empty()) return Value(tag.name == "true");
        return {};
    }

    std::optional<Value> array(const Tag& tag, int depth) {
        Array values;
        while (!tag.empty) {
            const auto next = nextTag();
            if (!next) return {};
            if (next->closes && next->name == tag.name) break;
            auto value = element(*next, depth + 1);
            if (!value) return {};
            values.push_back(std::move(*value));
        }
        return Value(std::move(values));
    }

    std::optional<Value> dictionary(const Tag& tag, int depth) {
        SharedContent::Entries entries;
        while (!tag.empty) {
            const auto next = nextTag();
            if (!next) return {};
            if (next->closes && next->name == tag.name) break;
            if (next->closes || next->name != "key") return {};
            auto key = content(*next);
            if (!key || !isPropertyListText(*key)) return {};
            const auto valueTag = nextTag();
            if (!valueTag) return {};
            auto value = element(*valueTag, depth + 1);
            if (!value) return {};
            entries.emplace_back(std::move(*key), std::move(*value));
        }
        return _shared.dictionary(std::move(entries));
    }

    /// The text of an element, and past its end.
    std::optional<std::string> content(const Tag& tag) {
        std::string text;
        while (!tag.empty) {
            const std::size_t run = _rest.find_first_of("<&");
            if (run == std::string_view::npos) return {};
            text.append(_rest.substr(0, run));
            _rest.remove_prefix(run);
            if (_rest.starts_with("</")) {
                if (!closing(tag.name)) return {};
                break;
            }
            if (_rest.starts_with("<!--")) {
                if (!skipPast("-->")) return {};
            } else if (_rest.starts_with("<![CDATA[")) {
                _rest.remove_prefix(9);
                text.append(_rest.substr(0, _rest.find("]]>")));
                if (!skipPast("]]>")) return {};
            } else if (!_rest.starts_with('&') || !reference(text)) {
                return {};
            }
        }
        return text;
    }

    /// "&lt;" or "&#60;"
    bool reference(std::string& text) {
        constexpr std::size_t kLongest = 12;
        static constexpr std::pair<std::string_view, char> kNamed[] = {
            {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
        const std::size_t end = _rest.substr(0, kLongest).find(';');
        if (end == std::string_view::npos) return false;
        std::string_view name = _rest.substr(1, end - 1);
        _rest.remove_prefix(end + 1);
        for (const auto& [known, character] : kNamed) {
            if (name != known) continue;
            text.push_back(character);
            return true;
        }
        if (!name.starts_with('#')) return false;
        name.remove_prefix(1);
        const bool hexadecimal = name.starts_with('x');
        if (hexadecimal) name.remove_prefix(1);
        std::uint32_t codePoint = 0;
        return readWhole(name, codePoint, hexadecimal ? 16 : 10) && appendUtf8(text, codePoint);
    }

    std::string_view _rest;
    SharedContent _shared;
};

}  // namespace

std::optional<Value> readXmlPropertyList(std::string_view bytes) {
    return XmlReader(bytes).read();
}

}  // namespace quorel
