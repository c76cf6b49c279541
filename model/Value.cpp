#include "model/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "model/Dictionary.h"

namespace quorel {

Value::Value(const char* text) : Value(std::string(text)) {}
Value::Value(std::string_view text) : Value(std::string(text)) {}
Value::Value(std::string text) : _content(std::make_shared<const std::string>(std::move(text))) {}
Value::Value(Data data) : _content(std::make_shared<const Data>(std::move(data))) {}
Value::Value(Array array) : _content(std::make_shared<const Array>(std::move(array))) {}
Value::Value(Dictionary dictionary) : _content(std::make_shared<const Dictionary>(std::move(dictionary))) {}

template <class T>
T Value::scalar() const {
    const T* own = std::get_if<T>(&_content);
    return own ? *own : T();
}

template <class T>
const T& Value::shared() const {
    static const T empty;
    const auto* own = std::get_if<Shared<T>>(&_content);
    return own ? **own : empty;
}

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

int intFromReal(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp(value, double{kLowest}, double{kHighest}));
}

int intFromText(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) return 0;
    text.remove_prefix(start);
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+') text.remove_prefix(1);
    std::int64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') break;
        number = std::min<std::int64_t>(number * 10 + (c - '0'), std::int64_t{kHighest} + 1);
    }
    return static_cast<int>(std::clamp<std::int64_t>(negative ? -number : number, kLowest, kHighest));
}

}  // namespace

int Value::intValue() const {
    if (isBoolean()) return scalar<bool>() ? 1 : 0;
    if (isText()) return intFromText(text());
    if (isReal()) return intFromReal(real());
    return static_cast<int>(static_cast<std::uint32_t>(integer()));
}

std::int64_t Value::integer() const {
    return scalar<std::int64_t>();
}

double Value::real() const {
    return scalar<double>();
}

Date Value::date() const {
    return scalar<Date>();
}

const std::string& Value::text() const {
    return shared<std::string>();
}

const Data& Value::data() const {
    return shared<Data>();
}

const Array& Value::array() const {
    return shared<Array>();
}

const Dictionary& Value::dictionary() const {
    return shared<Dictionary>();
}

const Value& Value::operator[](std::string_view key) const {
    return dictionary()[key];
}

Value Value::with(std::string_view key, Value value) const {
    Dictionary changed = dictionary();
    changed.set(key, std::move(value));
    return Value(std::move(changed));
}

bool operator==(const Value& a, const Value& b) {
    if (a._content == b._content) return true;  // of shared contents: one and the same
    if (a._content.index() != b._content.index()) return false;
    if (a.isText()) return a.text() == b.text();
    if (a.isData()) return a.data() == b.data();
    if (a.isArray()) return a.array() == b.array();
    return a.isDictionary() && a.dictionary() == b.dictionary();
}

}  // namespace quorel
