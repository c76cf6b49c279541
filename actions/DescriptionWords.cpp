#include "actions/DescriptionWords.h"

#include <algorithm>
#include <charconv>

#include "actions/DescriptionKeys.h"
#include "model/PlainText.h"

namespace quorel {

namespace {

using namespace description_fault;

constexpr std::size_t kLongestName = 120;

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isOfName(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || std::string_view(" -_.").find(c) != std::string_view::npos;
}

/// Toolkits give such texts a meaning of their own.
bool hasMarkup(std::string_view text) {
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1))
        if (at + 1 < text.size() &&
            (isLetter(text[at + 1]) || text[at + 1] == '/' || text[at + 1] == '!' || text[at + 1] == '?'))
            return true;
    return false;
}

bool isDecimal(const Value& value, int& number) {
    const std::string& text = value.text();
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end && !text.empty();
}

}  // namespace

void DescriptionWords::require(std::string_view key) {
    const Value& value = _dictionary[key];
    if (value.isAbsent() || (value.isDictionary() && value.dictionary().size() == 0)) fault(kMissing, key);
}

void DescriptionWords::allowOnly(std::initializer_list<std::string_view> known, std::string_view beginning) {
    const Dictionary& words = _dictionary.dictionary();
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& key = words.keyAt(i);
        if (key.starts_with(beginning) && std::ranges::find(known, key) == known.end()) fault(kUnknown, plainText(key));
    }
}

const Array& DescriptionWords::array(std::string_view key, std::size_t most) {
    const Value& value = _dictionary[key];
    if (value.isPresent() && !value.isArray()) fault(kKind, key);
    if (value.array().size() <= most) return value.array();
    fault(kTooMany, key);
    return Value().array();
}

const std::string& DescriptionWords::text(std::string_view key) {
    const Value& value = _dictionary[key];
    if (value.isPresent() && !value.isText()) fault(kKind, key);
    return value.text();
}

const std::string& DescriptionWords::name(std::string_view key) {
    const std::string& name = text(key);
    if (name.empty()) fault(kMissing, key);
    if (name.size() > kLongestName || !std::ranges::all_of(name, isOfName)) fault(kText, key);
    return name;
}

Dictionary DescriptionWords::texts(std::string_view key) {
    const Value& value = _dictionary[key];
    if (value.isPresent() && !value.isDictionary()) fault(kKind, key);
    const Dictionary& given = value.dictionary();
    if (given.size() > description_keys::kMostNames) fault(kTooMany, key);
    Dictionary texts;
    for (std::size_t i = 0; i < std::min(given.size(), description_keys::kMostNames); ++i) {
        const std::string language = plainText(given.keyAt(i));
        const std::string& text = given.valueAt(i).text();
        const std::string place = std::string(key) + " " + language;
        const std::string plain = plainText(text);
        if (!given.valueAt(i).isText()) {
            fault(kKind, place);
        } else if (text.empty()) {
            fault(kMissing, place);
        } else {
            if (plain != text || hasMarkup(text)) fault(kText, place);
            texts.set(language, plain);
        }
    }
    return texts;
}

std::optional<int> DescriptionWords::number(std::string_view key) {
    const Value& value = _dictionary[key];
    if (value.isAbsent()) return {};
    int number = value.intValue();
    if (value.isInteger() ? value.integer() != number : !isDecimal(value, number)) {
        fault(value.isInteger() ? kRange : kKind, key);
        return {};
    }
    return number;
}

std::optional<bool> DescriptionWords::flag(std::string_view key) {
    const Value& value = _dictionary[key];
    if (value.isAbsent()) return {};
    if (value.isBoolean() || value == Value(0) || value == Value(1)) return value.intValue() != 0;
    const std::string& word = value.text();
    if (word != "YES" && word != "NO" && word != "1" && word != "0") fault(kKind, key);
    return word == "YES" || word == "1";
}

}  // namespace quorel
