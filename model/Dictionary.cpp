#include "model/Dictionary.h"

namespace quorel {

Dictionary::Dictionary(std::initializer_list<std::pair<std::string_view, Value>> entries) {
    for (const auto& [key, value] : entries) set(key, value);
}

// One after another: of a Schedule's dozen keys most differ in length or in the last letter, and many begin alike.
const Value& Dictionary::operator[](std::string_view key) const {
    static const Value absent;
    for (std::size_t i = 0; i < size(); ++i) {
        const std::string& known = keyAt(i);
        if (known.size() == key.size() && (key.empty() || known.back() == key.back()) && known == key)
            return _values[i];
    }
    return absent;
}

void Dictionary::set(std::string_view key, Value value) {
    std::size_t place = 0;
    while (place < size() && keyAt(place) < key) ++place;
    const bool known = place < size() && keyAt(place) == key;
    if (known && value.isPresent()) {
        _values[place] = std::move(value);
        return;
    }
    if (!known && value.isAbsent()) return;
    Keys keys = _keys ? *_keys : Keys();
    const auto at = static_cast<std::ptrdiff_t>(place);
    if (known) {
        keys.erase(keys.begin() + at);
        _values.erase(_values.begin() + at);
    } else {
        keys.emplace(keys.begin() + at, key);
        _values.insert(_values.begin() + at, std::move(value));
    }
    _keys = std::make_shared<const Keys>(std::move(keys));
}

bool operator==(const Dictionary& a, const Dictionary& b) {
    return a._values == b._values && (a._keys == b._keys || a.size() == 0 || *a._keys == *b._keys);
}

}  // namespace quorel
