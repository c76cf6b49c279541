#include "model/PropertyListText.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "model/Dictionary.h"
#include "model/PropertyList.h"
#include "model/PropertyListContent.h"
#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n\f\v";

bool isBare(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_$/:.-+").find(c) != std::string_view::npos;
}

class TextReader {
public:
    TextReader(std::string_view bytes, std::string* doubled) : _rest(bytes), _doubled(doubled) {}

    /// What there is, with nothing behind it.
    std::optional<Value> whole() {
        if (_rest.starts_with(kByteOrderMark)) _rest.remove_prefix(kByteOrderMark.size());
        std::optional<Value> value = this->value(1);
        return value && skipBlanks() && _rest.empty() ? value : std::nullopt;
    }

private:
    /// False for a comment without an end.
    bool skipBlanks() {
        for (;;) {
            _rest.remove_prefix(std::min(_rest.find_first_not_of(kBlanks), _rest.size()));
            const bool isLine = _rest.starts_with("//");
            if (!isLine && !_rest.starts_with("/*")) return true;
            const std::size_t end = isLine ? _rest.find('\n') : _rest.find("*/", 2);
            if (end == std::string_view::npos && !isLine) return false;
            _rest.remove_prefix(std::min(isLine ? end : end + 2, _rest.size()));
        }
    }

    bool take(char c) {
        if (!skipBlanks() || !_rest.starts_with(c)) return false;
        _rest.remove_prefix(1);
        return true;
    }

    std::optional<Value> value(int depth) {
        if (take('{')) return dictionary(depth);
        if (take('(')) return array(depth);
        std::optional<std::string> text = this->text();
        return text ? std::optional<Value>(std::move(*text)) : std::nullopt;
    }

    std::optional<Value> dictionary(int depth) {
        DictionaryMaker::Entries entries;
        if (depth > kMaximumPropertyListDepth) return {};
        while (!take('}')) {
            std::optional<std::string> key = text();
            if (!key || !take('=')) return {};
            std::optional<Value> value = this->value(depth + 1);
            if (!value) return {};
            entries.emplace_back(std::move(*key), std::move(*value));
            if (take(';')) continue;  // the last one may go without
            if (!take('}')) return {};
            break;
        }
        noteDoubled(entries);
        return DictionaryMaker().dictionary(std::move(entries));
    }

    void noteDoubled(const DictionaryMaker::Entries& entries) {
        std::set<std::string_view> known;
        for (const auto& [key, value] : entries)
            if (!known.insert(key).second && _doubled && _doubled->empty()) *_doubled = key;
    }

    std::optional<Value> array(int depth) {
        Array elements;
        if (depth > kMaximumPropertyListDepth) return {};
        while (!take(')')) {
            std::optional<Value> element = value(depth + 1);
            if (!element) return {};
            elements.push_back(std::move(*element));
            if (take(',')) continue;
            if (!take(')')) return {};
            break;
        }
        return Value(std::move(elements));
    }

    std::optional<std::string> text() {
        std::string text;
        if (take('"')) {
            while (!_rest.starts_with('"'))
                if (!character(text)) return {};
            _rest.remove_prefix(1);
        } else {
            while (!_rest.empty() && isBare(_rest.front())) {
                text += _rest.front();
                _rest.remove_prefix(1);
            }
            if (text.empty()) return {};
        }
        return isPropertyListText(text) ? std::optional<std::string>(std::move(text)) : std::nullopt;
    }

    /// One of those between quotes.
    bool character(std::string& text) {
        if (_rest.empty()) return false;
        const char first = _rest.front();
        _rest.remove_prefix(1);
        if (first != '\\') {
            text += first;
            return true;
        }
        if (_rest.empty()) return false;
        const char escaped = _rest.front();
        if (escaped == 'U' || escaped == 'u') {
            _rest.remove_prefix(1);
            return number(text, 4, 16, 0xFFFF);
        }
        if (escaped >= '0' && escaped <= '7') return number(text, 3, 8, 0x7F);
        constexpr std::string_view kLetters = "abfnrtv";
        constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v";
        const std::size_t found = kLetters.find(escaped);
        text += found == std::string_view::npos ? escaped : kMeanings[found];
        _rest.remove_prefix(1);
        return true;
    }

    bool number(std::string& text, std::size_t digits, int base, unsigned most) {
        const std::string_view written = _rest.substr(0, digits);
        unsigned code = 0;
        const auto [end, error] = std::from_chars(written.data(), written.data() + written.size(), code, base);
        if (error != std::errc() || code > most) return false;
        _rest.remove_prefix(static_cast<std::size_t>(end - written.data()));
        return appendCharacter(text, code);
    }

    std::string_view _rest;
    std::string* const _doubled;
};

}  // namespace

Value decodePropertyListText(std::string_view bytes, std::string* doubledKey) {
    return TextReader(bytes, doubledKey).whole().value_or(Value());
}

}  // namespace quorel
