#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Value.h"

namespace quorel {

/// A dictionary under construction, or the content of a Value. Enumerates in the order of its keys. Copies, and
/// dictionaries made so, share their keys: of a list of dictionaries alike, each stores its values alone.
class Dictionary {
public:
    using Keys = std::vector<std::string>;  ///< sorted, each once

    Dictionary() = default;
    Dictionary(std::initializer_list<std::pair<std::string_view, Value>> entries);
    /// One value per key, in the order of the keys.
    Dictionary(std::shared_ptr<const Keys> keys, std::vector<Value> values)
        : _keys(std::move(keys)), _values(std::move(values)) {}

    std::size_t size() const { return _values.size(); }
    const std::string& keyAt(std::size_t index) const { return (*_keys)[index]; }
    const Value& valueAt(std::size_t index) const { return _values[index]; }

    const Value& operator[](std::string_view key) const;  ///< absent for an unknown key
    /// An absent value removes the entry. What other than replaces a value copies all keys.
    void set(std::string_view key, Value value);

    friend bool operator==(const Dictionary& a, const Dictionary& b);

private:
    std::shared_ptr<const Keys> _keys;  // null as long as there were none
    std::vector<Value> _values;
};

}  // namespace quorel
