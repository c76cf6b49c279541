#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/Value.h"

namespace quorel {

/// What is wrong with preferences that somebody wants stored, naming the key; nothing when they are fine. The keys
/// must be the six of the file, each of its kind; a Schedule may hold any entries. Depth and size have been bounded by
/// whoever decoded them.
std::optional<std::string> faultInPreferences(const Value& preferences);
/// The same of one value under a key of the file.
std::optional<std::string> faultInPreference(std::string_view key, const Value& value);
/// The six keys of a file, fit to be stored: each number by its integer value, as all read it who go by it, nothing
/// being 0; and what is no Schedule left out.
Value storablePreferences(const Value& stored);
/// Whether both are the same but for "Prefs Version", which is stored with the rest and read by nobody.
bool areSamePreferences(const Value& a, const Value& b);

}  // namespace quorel
