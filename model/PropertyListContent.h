#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
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

/// Makes the dictionaries of one list; those alike share their keys.
class DictionaryMaker {
public:
    using Entries = std::vector<std::pair<std::string, Value>>;
    /// In any order; of entries with one key the last counts.
    Value dictionary(Entries entries);

private:
    std::map<Dictionary::Keys, std::shared_ptr<const Dictionary::Keys>> _keys;
};

inline constexpr std::string_view kBase64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The two encodings. Nothing for whatever is malformed or too deep; the caller has bounded the size.
std::optional<Value> readXmlPropertyList(std::string_view bytes);
std::optional<Value> readBinaryPropertyList(std::string_view bytes, std::size_t maximumBytes);

}  // namespace quorel
