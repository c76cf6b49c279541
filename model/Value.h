#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

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
    Value(const Value& other) = default;
    Value(Value&& other) noexcept : _content(std::exchange(other._content, {})) {}  ///< leaves the other one absent
    /// By value: what is assigned may lie within what is let go.
    Value& operator=(Value other) noexcept {
        _content.swap(other._content);
        return *this;
    }
    ~Value() = default;
    Value(bool value) : _content(value) {}
    Value(int value) : _content(std::int64_t{value}) {}
    Value(std::int64_t value) : _content(value) {}
    Value(double value) : _content(value) {}
    Value(Date value) : _content(value) {}
    Value(const char* text);
    Value(std::string_view text);
    Value(std::string text);
    Value(Data data);
    Value(Array array);
    Value(Dictionary dictionary);
    Value(const void*) = delete;  // would silently become a boolean

    bool isAbsent() const { return holds<std::monostate>(); }
    bool isPresent() const { return !isAbsent(); }
    bool isBoolean() const { return holds<bool>(); }
    bool isInteger() const { return holds<std::int64_t>(); }
    bool isReal() const { return holds<double>(); }
    bool isDate() const { return holds<Date>(); }
    bool isText() const { return holds<Shared<std::string>>(); }
    bool isData() const { return holds<Shared<Data>>(); }
    bool isArray() const { return holds<Shared<Array>>(); }
    bool isDictionary() const { return holds<Shared<Dictionary>>(); }

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

    friend bool operator==(const Value& a, const Value& b);

private:
    template <class T>
    using Shared = std::shared_ptr<const T>;  // never null
    template <class T>
    bool holds() const {
        return std::holds_alternative<T>(_content);
    }
    template <class T>
    T scalar() const;
    template <class T>
    const T& shared() const;

    std::variant<std::monostate, bool, std::int64_t, double, Date, Shared<std::string>, Shared<Data>, Shared<Array>,
                 Shared<Dictionary>>
        _content;
};

}  // namespace quorel
