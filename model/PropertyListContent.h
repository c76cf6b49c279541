#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "model/Dictionary.h"
#include "model/Value.h"

namespace quorel {

/// Whether XML can carry a text: valid UTF-8 without U+FFFE, U+FFFF and control characters other than tab and line
/// ends. Property lists keep to that in either encoding, so that whatever has been read can be written.
bool isPropertyListText(std::string_view text);

/// Whole seconds within the years 1 to 9999, which is what a written date can say.
std::optional<std::chrono::sys_seconds> calendarTime(Date date);
Date dateOf(std::chrono::sys_seconds time);

/// Makes the values of one list, sharing what is equal: the keys of dictionaries alike, and short texts.
class SharedContent {
public:
    /// Nothing where isPropertyListText does not hold.
    std::optional<Value> text(std::string text);

    using Entries = std::vector<std::pair<std::string, Value>>;
    /// In any order; of entries with one key the last counts.
    Value dictionary(Entries entries);

private:
    std::map<std::vector<std::string>, Ref<DictionaryKeys>> _keys;
    std::unordered_map<std::string_view, Value> _texts;  // by the texts that the values hold
};

/// The two encodings. Nothing for whatever is malformed or too deep; the caller has bounded the size.
std::optional<Value> readXmlPropertyList(std::string_view bytes);
std::optional<Value> readBinaryPropertyList(std::string_view bytes, std::size_t maximumBytes);

}  // namespace quorel
