#include "model/Dictionary.h"

#include <algorithm>

namespace quorel {

namespace {

const Value kAbsent;

std::size_t lowerBound(const std::vector<std::string>& keys, std::string_view key) {
    return static_cast<std::size_t>(std::lower_bound(keys.begin(), keys.end(), key) - keys.begin());
}

}  // namespace

std::size_t DictionaryKeys::indexOf(std::string_view key) const {
    const std::size_t index = lowerBound(_keys, key);
    return index < _keys.size() && _keys[index] == key ? index : kNotFound;
}

Dictionary::Dictionary(std::initializer_list<std::pair<std::string_view, Value>> entries) {
    for (const auto& [key, value] : entries) set(key, value);
}

const Value& Dictionary::operator[](std::string_view key) const {
    const std::size_t index = _keys ? _keys->indexOf(key) : DictionaryKeys::kNotFound;
    return index == DictionaryKeys::kNotFound ? kAbsent : _values[index];
}

void Dictionary::set(std::string_view key, Value value) {
    const std::size_t place = _keys ? lowerBound(_keys->_keys, key) : 0;
    const auto at = static_cast<std::ptrdiff_t>(place);
    const bool known = place < size() && keyAt(place) == key;
    if (known && value.isPresent()) {
        _values[place] = std::move(value);
    } else if (known) {
        changedKeys().erase(changedKeys().begin() + at);
        _values.erase(_values.begin() + at);
    } else if (value.isPresent()) {
        changedKeys().emplace(changedKeys().begin() + at, key);
        _values.insert(_values.begin() + at, std::move(value));
    }
}

std::vector<std::string>& Dictionary::changedKeys() {
    if (!_keys.unique()) _keys = Ref(_keys ? new DictionaryKeys(_keys->_keys) : new DictionaryKeys);
    return _keys->_keys;
}

bool operator==(const Dictionary& a, const Dictionary& b) {
    if (a.size() != b.size()) return false;
    const bool sameKeys = a.size() == 0 || a._keys == b._keys || *a._keys == *b._keys;
    return sameKeys && a._values == b._values;
}

const Value& KeyReader::operator()(const Value& dictionary) {
    const Dictionary& content = dictionary.dictionary();
    const DictionaryKeys* keys = content.keys().get();
    if (!keys) return kAbsent;
    if (keys != _keys.get()) {
        _keys = content.keys();
        _index = keys->indexOf(_key);
    }
    return _index == DictionaryKeys::kNotFound ? kAbsent : content.valueAt(_index);
}

}  // namespace quorel
