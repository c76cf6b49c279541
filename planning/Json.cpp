#include "planning/Json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "model/Dictionary.h"
#include "model/PlainText.h"
#include "model/PropertyList.h"
#include "model/Utf8.h"

namespace quorel {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kDictionary = "$dictionary";
/// What JSON has no form for: the key here, and the element that a property list has for it.
constexpr struct {
    std::string_view key, element;
} kForms[] = {{"$date", "date"}, {"$data", "data"}, {"$real", "real"}};

std::string escaped(char32_t unit) {
    return {'\\', 'u', kDigits[unit >> 12 & 15], kDigits[unit >> 8 & 15], kDigits[unit >> 4 & 15], kDigits[unit & 15]};
}

/// What would act where it is shown is written by its number.
std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        const char32_t c = takeCharacter(rest);
        if (c == '"' || c == '\\') result += '\\';
        if (isPlain(c))
            result += before.substr(0, before.size() - rest.size());
        else if (c > 0xFFFF)
            (result += escaped(0xD800 + ((c - 0x10000) >> 10))) += escaped(0xDC00 + (c & 0x3FF));
        else
            result += escaped(c);
    }
    return result + '"';
}

std::string numberText(auto value) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
}

std::string realText(double real) {
    const std::string text = numberText(real);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

/// As a property list writes it, between the marks.
std::string formText(std::size_t form, const Value& value) {
    const auto& [key, element] = kForms[form];
    const std::string xml = encodePropertyList(value).value_or("");
    const std::size_t begin = xml.find("<" + std::string(element) + ">") + element.size() + 2;
    const std::size_t end = xml.find("</" + std::string(element));
    if (end == std::string::npos) return "null";
    return "{" + quoted(key) + ":" + quoted(xml.substr(begin, end - begin)) + "}";
}

Value formValue(std::size_t form, const std::string& text) {
    // Nothing that would be a mark.
    const bool isPlain = std::ranges::all_of(text, [](char c) { return c > ' ' && c != '<' && c != '&' && c < 0x7F; });
    const std::string element(kForms[form].element);
    return isPlain ? decodePropertyList("<plist><" + element + ">" + text + "</" + element + "></plist>") : Value();
}

/// Whether it could be taken for one.
bool hasFormKey(const Dictionary& dictionary) {
    for (std::size_t i = 0; i < dictionary.size(); ++i)
        if (dictionary.keyAt(i).starts_with('$')) return true;
    return false;
}

class JsonReader {
public:
    explicit JsonReader(std::string_view text) : _text(text) {}

    JsonReading read() {
        Value value = readValue(0);
        if (value.isPresent() && next() != '\0') value = {};
        return value.isPresent() ? JsonReading{std::move(value), 0} : JsonReading{{}, _place};
    }

private:
    /// The next character that is no blank; none at the end.
    char next() {
        while (_place < _text.size() && std::string_view(" \t\r\n").find(_text[_place]) != std::string_view::npos)
            ++_place;
        return _place < _text.size() ? _text[_place] : '\0';
    }

    bool take(char c) {
        const bool isThere = next() == c;
        if (isThere) ++_place;
        return isThere;
    }

    bool takeWord(std::string_view word) {
        const bool isThere = _text.substr(_place).starts_with(word);
        if (isThere) _place += word.size();
        return isThere;
    }

    Value readValue(int depth) {
        const char first = next();
        if (depth > 2 * kMaximumPropertyListDepth) return {};  // forms take a level more
        if (first == '{') return readDictionary(depth);
        if (first == '[') return readArray(depth);
        if (first == '"') return readText();
        if (takeWord("true")) return true;
        if (takeWord("false")) return false;
        return readNumber();
    }

    Value readArray(int depth) {
        Array array;
        take('[');
        if (take(']')) return array;
        do {
            array.push_back(readValue(depth + 1));
            if (array.back().isAbsent()) return {};
        } while (take(','));
        return take(']') ? Value(std::move(array)) : Value();
    }

    /// `isMeant`: it is no form, whatever it looks like.
    Value readDictionary(int depth, bool isMeant = false) {
        Dictionary dictionary;
        const std::size_t begin = _place;
        take('{');
        if (take('}')) return dictionary;
        do {
            if (next() != '"') return {};
            const std::size_t place = _place;
            const Value key = readText();
            if (key.isAbsent() || !take(':')) return {};
            const bool isEscaped = !isMeant && key.text() == kDictionary && next() == '{';
            Value value = isEscaped ? readDictionary(depth + 1, true) : readValue(depth + 1);
            if (value.isAbsent()) return {};
            if (dictionary[key.text()].isPresent()) return failAt(place);  // which of the two is meant?
            dictionary.set(key.text(), std::move(value));
        } while (take(','));
        if (!take('}')) return {};
        const bool isForm = !isMeant && hasFormKey(dictionary);
        return isForm ? unfolded(dictionary, begin) : Value(std::move(dictionary));
    }

    Value unfolded(const Dictionary& dictionary, std::size_t begin) {
        const std::string& key = dictionary.keyAt(0);
        const Value& value = dictionary.valueAt(0);
        if (dictionary.size() > 1) return failAt(begin);
        if (key == kDictionary && value.isDictionary()) return value;
        for (std::size_t form = 0; form < std::size(kForms); ++form) {
            if (key != kForms[form].key || !value.isText()) continue;
            Value found = formValue(form, value.text());
            if (found.isPresent()) return found;
        }
        return failAt(begin);
    }

    Value failAt(std::size_t place) {
        _place = place;
        return {};
    }

    Value readText() {
        std::string text;
        const std::size_t begin = _place++;
        while (_place < _text.size() && _text[_place] != '"') {
            if (_text[_place] != '\\') {
                text += _text[_place++];
            } else if (!readEscape(text)) {
                return {};
            }
        }
        if (_place == _text.size() || !encodePropertyList(text)) return failAt(begin);
        ++_place;
        return text;
    }

    bool readEscape(std::string& text) {
        constexpr std::string_view kNames = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
        const std::size_t place = _place++;
        const std::size_t named = _place < _text.size() ? kNames.find(_text[_place]) : std::string_view::npos;
        if (named != std::string_view::npos) {
            text += kMeanings[named];
            ++_place;
            return true;
        }
        unsigned code = 0;
        bool isFine = readUnit(code);
        if (isFine && code >= 0xD800 && code < 0xDC00) {
            unsigned low = 0;
            isFine = takeWord("\\") && readUnit(low) && low >= 0xDC00 && low < 0xE000;
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        if (!isFine) _place = place;
        if (isFine) append(text, code);
        return isFine;
    }

    bool readUnit(unsigned& code) {
        if (!takeWord("u") || _text.size() < _place + 4) return false;
        const char* end = _text.data() + _place + 4;
        const bool isFine = std::from_chars(_text.data() + _place, end, code, 16).ptr == end;
        _place += 4;
        return isFine;
    }

    static void append(std::string& text, unsigned code) {
        const auto put = [&text](unsigned byte) { text += static_cast<char>(byte); };
        if (code < 0x80) return put(code);
        if (code >= 0x10000) put(0xF0 | code >> 18);
        if (code >= 0x10000) put(0x80 | (code >> 12 & 0x3F));
        if (code >= 0x800 && code < 0x10000) put(0xE0 | code >> 12);
        if (code < 0x800) put(0xC0 | code >> 6);
        if (code >= 0x800) put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }

    Value readNumber() {
        const std::string_view rest = _text.substr(_place);
        const std::string_view digits = rest.substr(0, rest.find_first_not_of("+-.0123456789eE"));
        const char* end = digits.data() + digits.size();
        std::int64_t whole = 0;
        double real = 0;
        Value value;
        if (digits.find_first_of(".eE") == std::string_view::npos) {
            if (std::from_chars(digits.data(), end, whole) == std::from_chars_result{end, std::errc()}) value = whole;
        } else if (std::from_chars(digits.data(), end, real) == std::from_chars_result{end, std::errc()}) {
            value = real;
        }
        if (value.isPresent()) _place += digits.size();
        return value;
    }

    const std::string_view _text;
    std::size_t _place = 0;
};

}  // namespace

std::string jsonText(const Value& value) {
    if (value.isBoolean()) return value.intValue() ? "true" : "false";
    if (value.isInteger()) return numberText(value.integer());
    if (value.isReal()) return std::isfinite(value.real()) ? realText(value.real()) : formText(2, value);
    if (value.isDate()) return formText(0, value);
    if (value.isData()) return formText(1, value);
    if (value.isText()) return quoted(value.text());
    std::string result;
    if (value.isArray()) {
        for (const Value& element : value.array()) result += (result.empty() ? "" : ",") + jsonText(element);
        return "[" + result + "]";
    }
    if (!value.isDictionary()) return "null";
    const Dictionary& dictionary = value.dictionary();
    for (std::size_t i = 0; i < dictionary.size(); ++i) {
        result += i == 0 ? "" : ",";
        result += quoted(dictionary.keyAt(i)) + ":" + jsonText(dictionary.valueAt(i));
    }
    result = "{" + result + "}";
    return hasFormKey(dictionary) ? "{" + quoted(kDictionary) + ":" + result + "}" : result;
}

JsonReading readJson(std::string_view text) {
    return JsonReader(text).read();
}

}  // namespace quorel
