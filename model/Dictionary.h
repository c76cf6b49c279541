#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Value.h"

namespace quorel {

/// A sorted set of keys that dictionaries alike share, so that each of them stores only its values.
class DictionaryKeys : public RefCounted {
public:
    static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

    DictionaryKeys() = default;
    explicit DictionaryKeys(std::vector<std::string> sortedUniqueKeys) : _keys(std::move(sortedUniqueKeys)) {}
    std::size_t size() const { return _keys.size(); }
    const std::string& operator[](std::size_t index) const { return _keys[index]; }
    std::size_t indexOf(std::string_view key) const;  ///< kNotFound for an unknown key
    friend bool operator==(const DictionaryKeys& a, const DictionaryKeys& b) { return a._keys == b._keys; }

private:
    friend class Dictionary;
    std::vector<std::string> _keys;
};

/// A dictionary under construction, or the content of a Value. Enumerates in the order of its keys.
class Dictionary {
public:
    Dictionary() = default;
    Dictionary(std::initializer_list<std::pair<std::string_view, Value>> entries);
    /// One value per key, in the order of the keys.
    Dictionary(Ref<DictionaryKeys> keys, std::vector<Value> values)
        : _keys(std::move(keys)), _values(std::move(values)) {}

    std::size_t size() const { return _values.size(); }
    const std::string& keyAt(std::size_t index) const { return (*_keys)[index]; }
    const Value& valueAt(std::size_t index) const { return _values[index]; }
    /// Null in a dictionary that never had an entry. Not to be changed while shared.
    const Ref<DictionaryKeys>& keys() const { return _keys; }

    const Value& operator[](std::string_view key) const;  ///< absent for an unknown key
    /// An absent value removes the entry.
    void set(std::string_view key, Value value);

    friend bool operator==(const Dictionary& a, const Dictionary& b);

private:
    std::vector<std::string>& changedKeys();  ///< of this dictionary alone

    Ref<DictionaryKeys> _keys;
    std::vector<Value> _values;
};

/// Reads one key from many dictionaries: where the key stood in the last one is where it stands in all that
/// share its keys. One thread at a time.
class KeyReader {
public:
    explicit KeyReader(std::string_view key) : _key(key) {}  ///< the text must outlive the reader
    const Value& operator()(const Value& dictionary);

private:
    std::string_view _key;
    Ref<DictionaryKeys> _keys;
    std::size_t _index = DictionaryKeys::kNotFound;
};

}  // namespace quorel
