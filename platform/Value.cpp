#include "platform/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Dictionary.h"

namespace quorel {

template <class T>
struct Shared : RefCounted {
    explicit Shared(T value) : content(std::move(value)) {}
    T content;
};

struct Value::Text : Shared<std::string> {
    using Shared::Shared;
};
struct Value::Bytes : Shared<Data> {
    using Shared::Shared;
};
struct Value::List : Shared<Array> {
    using Shared::Shared;
};
struct Value::Table : Shared<Dictionary> {
    using Shared::Shared;
};

Value::Value() = default;
Value::Value(bool value) : _content(value) {}
Value::Value(int value) : _content(std::int64_t{value}) {}
Value::Value(std::int64_t value) : _content(value) {}
Value::Value(double value) : _content(value) {}
Value::Value(Date value) : _content(value) {}
Value::Value(const char* text) : Value(std::string(text)) {}
Value::Value(std::string_view text) : Value(std::string(text)) {}
Value::Value(std::string text) : _content(Ref<const Text>(new Text(std::move(text)))) {}
Value::Value(Data data) : _content(Ref<const Bytes>(new Bytes(std::move(data)))) {}
Value::Value(Array array) : _content(Ref<const List>(new List(std::move(array)))) {}
Value::Value(Dictionary dictionary) : _content(Ref<const Table>(new Table(std::move(dictionary)))) {}

Value::Value(const Value&) = default;
Value::Value(Value&&) noexcept = default;
Value& Value::operator=(const Value&) = default;
Value& Value::operator=(Value&&) noexcept = default;
Value::~Value() = default;

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
    if (isInteger()) return static_cast<int>(static_cast<std::uint32_t>(integer()));
    if (isBoolean()) return std::get<bool>(_content) ? 1 : 0;
    if (isText()) return intFromText(text());
    if (isReal()) return intFromReal(real());
    return 0;
}

std::int64_t Value::integer() const {
    const auto* value = std::get_if<std::int64_t>(&_content);
    return value ? *value : 0;
}

double Value::real() const {
    const auto* value = std::get_if<double>(&_content);
    return value ? *value : 0;
}

Date Value::date() const {
    const auto* value = std::get_if<Date>(&_content);
    return value ? *value : Date{};
}

const std::string& Value::text() const {
    static const std::string empty;
    const auto* value = std::get_if<Ref<const Text>>(&_content);
    return value ? (*value)->content : empty;
}

const Data& Value::data() const {
    static const Data empty;
    const auto* value = std::get_if<Ref<const Bytes>>(&_content);
    return value ? (*value)->content : empty;
}

const Array& Value::array() const {
    static const Array empty;
    const auto* value = std::get_if<Ref<const List>>(&_content);
    return value ? (*value)->content : empty;
}

const Dictionary& Value::dictionary() const {
    static const Dictionary empty;
    const auto* value = std::get_if<Ref<const Table>>(&_content);
    return value ? (*value)->content : empty;
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
    if (_content.index() != other._content.index()) return false;
    if (isText()) return &text() == &other.text();
    if (isData()) return &data() == &other.data();
    if (isArray()) return &array() == &other.array();
    if (isDictionary()) return &dictionary() == &other.dictionary();
    return _content == other._content;
}

bool operator==(const Value& a, const Value& b) {
    if (a.isIdenticalTo(b)) return true;
    if (a._content.index() != b._content.index()) return false;
    if (a.isText()) return a.text() == b.text();
    if (a.isData()) return a.data() == b.data();
    if (a.isArray()) return a.array() == b.array();
    return a.isDictionary() && a.dictionary() == b.dictionary();
}

}  // namespace quorel
