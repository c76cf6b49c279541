#include "model/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "model/Dictionary.h"

namespace quorel {

template <class T>
struct Value::Shared : RefCounted {
    explicit Shared(T value) : content(std::move(value)) {}
    T content;
};

template <class T>
Value::Content Value::share(T content) {
    const auto* shared = new Shared<T>(std::move(content));
    shared->retain();
    return {.shared = shared};
}

template <class T>
const T& Value::sharedContent(Kind kind) const {
    static const T empty;
    return _kind == kind ? static_cast<const Shared<T>*>(_content.shared)->content : empty;
}

void Value::destroyShared() {
    if (isText()) delete static_cast<const Shared<std::string>*>(_content.shared);
    if (isData()) delete static_cast<const Shared<Data>*>(_content.shared);
    if (isArray()) delete static_cast<const Shared<Array>*>(_content.shared);
    if (isDictionary()) delete static_cast<const Shared<Dictionary>*>(_content.shared);
}

Value::Value(const char* text) : Value(std::string(text)) {}
Value::Value(std::string_view text) : Value(std::string(text)) {}
Value::Value(std::string text) : _kind(Kind::kText), _content(share(std::move(text))) {}
Value::Value(Data data) : _kind(Kind::kData), _content(share(std::move(data))) {}
Value::Value(Array array) : _kind(Kind::kArray), _content(share(std::move(array))) {}
Value::Value(Dictionary dictionary) : _kind(Kind::kDictionary), _content(share(std::move(dictionary))) {}

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
    if (isInteger() || isBoolean()) return static_cast<int>(static_cast<std::uint32_t>(_content.integer));
    if (isText()) return intFromText(text());
    if (isReal()) return intFromReal(_content.real);
    return 0;
}

std::int64_t Value::integer() const {
    return isInteger() ? _content.integer : 0;
}

double Value::real() const {
    return isReal() ? _content.real : 0;
}

Date Value::date() const {
    return {isDate() ? _content.real : 0};
}

const std::string& Value::text() const {
    return sharedContent<std::string>(Kind::kText);
}

const Data& Value::data() const {
    return sharedContent<Data>(Kind::kData);
}

const Array& Value::array() const {
    return sharedContent<Array>(Kind::kArray);
}

const Dictionary& Value::dictionary() const {
    return sharedContent<Dictionary>(Kind::kDictionary);
}

const Value& Value::operator[](std::string_view key) const {
    return dictionary()[key];
}

Value Value::with(std::string_view key, Value value) const {
    Dictionary changed = dictionary();
    changed.set(key, std::move(value));
    return Value(std::move(changed));
}

bool Value::isIdenticalTo(const Value& other) const {
    if (_kind != other._kind) return false;
    if (isAbsent()) return true;
    if (isShared()) return _content.shared == other._content.shared;
    if (isReal() || isDate()) return _content.real == other._content.real;
    return _content.integer == other._content.integer;
}

bool operator==(const Value& a, const Value& b) {
    if (a.isIdenticalTo(b)) return true;
    if (a._kind != b._kind) return false;
    if (a.isText()) return a.text() == b.text();
    if (a.isData()) return a.data() == b.data();
    if (a.isArray()) return a.array() == b.array();
    return a.isDictionary() && a.dictionary() == b.dictionary();
}

}  // namespace quorel
