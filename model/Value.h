#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Ref.h"

namespace quorel {

class Value;
class Dictionary;
using Array = std::vector<Value>;
using Data = std::vector<std::uint8_t>;

/// A moment, in seconds since 2001-01-01 00:00 UTC.
struct Date {
    double secondsSinceReference = 0;
    friend bool operator==(const Date&, const Date&) = default;
};

/// A property-list value, or absent. Immutable; copies share what they hold, so copying is cheap and values
/// may be read from any thread. Booleans and integers are different values, as they are in a file.
/// Comparing and destroying follow the nesting with the stack: whoever builds values from outside bounds the depth.
class Value {
public:
    Value() = default;  ///< absent
    Value(const Value& other) noexcept : _kind(other._kind), _content(other._content) {
        if (isShared()) _content.shared->retain();
    }
    Value(Value&& other) noexcept : _kind(std::exchange(other._kind, Kind::kAbsent)), _content(other._content) {}
    Value& operator=(Value other) noexcept {
        std::swap(_kind, other._kind);
        std::swap(_content, other._content);
        return *this;
    }
    ~Value() {
        if (isShared() && _content.shared->release()) destroyShared();
    }
    Value(bool value) : _kind(Kind::kBoolean), _content{.integer = value} {}
    Value(int value) : Value(std::int64_t{value}) {}
    Value(std::int64_t value) : _kind(Kind::kInteger), _content{.integer = value} {}
    Value(double value) : _kind(Kind::kReal), _content{.real = value} {}
    Value(Date value) : _kind(Kind::kDate), _content{.real = value.secondsSinceReference} {}
    Value(const char* text);
    Value(std::string_view text);
    Value(std::string text);
    Value(Data data);
    Value(Array array);
    Value(Dictionary dictionary);
    Value(const void*) = delete;  // would silently become a boolean

    bool isAbsent() const { return _kind == Kind::kAbsent; }
    bool isPresent() const { return _kind != Kind::kAbsent; }
    bool isBoolean() const { return _kind == Kind::kBoolean; }
    bool isInteger() const { return _kind == Kind::kInteger; }
    bool isReal() const { return _kind == Kind::kReal; }
    bool isDate() const { return _kind == Kind::kDate; }
    bool isText() const { return _kind == Kind::kText; }
    bool isData() const { return _kind == Kind::kData; }
    bool isArray() const { return _kind == Kind::kArray; }
    bool isDictionary() const { return _kind == Kind::kDictionary; }

    /// The one reading of a value as a number, for all readers: integers truncated to 32 bits, reals towards
    /// zero and kept in range, booleans 0 or 1, texts by their leading decimal integer, all else 0.
    int intValue() const;

    /// The content, or an empty one of that kind. References live as long as a copy of the value does.
    std::int64_t integer() const;
    double real() const;
    Date date() const;
    const std::string& text() const;
    const Data& data() const;
    const Array& array() const;
    const Dictionary& dictionary() const;

    /// The entry of a dictionary; absent for an unknown key and for whatever is no dictionary.
    const Value& operator[](std::string_view key) const;
    /// A copy of this dictionary in which `key` holds `value`; from anything else, a dictionary of that one entry.
    Value with(std::string_view key, Value value) const;

    /// True when both share one and the same content, which makes them equal without a look.
    bool isIdenticalTo(const Value& other) const;
    friend bool operator==(const Value& a, const Value& b);

private:
    /// From kText on, the content is shared.
    enum class Kind : std::uint8_t { kAbsent, kBoolean, kInteger, kReal, kDate, kText, kData, kArray, kDictionary };
    template <class T>
    struct Shared;
    union Content {
        std::int64_t integer;
        double real;
        const RefCounted* shared;
    };

    template <class T>
    static Content share(T content);
    template <class T>
    const T& sharedContent(Kind kind) const;
    bool isShared() const { return _kind >= Kind::kText; }
    void destroyShared();

    Kind _kind = Kind::kAbsent;
    Content _content{.integer = 0};
};

}  // namespace quorel
