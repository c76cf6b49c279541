#include "ctl/Json.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "model/Dictionary.h"

namespace quorel {

namespace {

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            constexpr std::string_view kDigits = "0123456789abcdef";
            result += "\\u00";
            result += kDigits[byte >> 4];
            result += kDigits[byte & 15];
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string number(auto value) {
    std::array<char, 32> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return {digits.data(), end};
}

}  // namespace

std::string jsonText(const Value& value) {
    if (value.isBoolean()) return value.intValue() ? "true" : "false";
    if (value.isInteger()) return number(value.integer());
    if (value.isReal() && std::isfinite(value.real())) return number(value.real());
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
    return "{" + result + "}";
}

}  // namespace quorel
