#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/Ref.h"

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
    Value();  ///< absent
    Value(const Value& other);
    Value(Value&& other) noexcept;
    Value& operator=(const Value& other);
    Value& operator=(Value&& other) noexcept;
    ~Value();
    Value(bool value);
    Value(int value);
    Value(std::int64_t value);
    Value(double value);
    Value(Date value);
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
    bool isText() const { return holds<Ref<const Text>>(); }
    bool isData() const { return holds<Ref<const Bytes>>(); }
    bool isArray() const { return holds<Ref<const List>>(); }
    bool isDictionary() const { return holds<Ref<const Table>>(); }

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
    struct Text;
    struct Bytes;
    struct List;
    struct Table;
    template <class T>
    bool holds() const {
        return std::holds_alternative<T>(_content);
    }

    std::variant<std::monostate, bool, std::int64_t, double, Date, Ref<const Text>, Ref<const Bytes>, Ref<const List>,
                 Ref<const Table>>
        _content;
};

}  // namespace quorel
