#include "planning/PreferencesCheck.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "model/Dictionary.h"
#include "model/Preferences.h"

namespace quorel {

namespace {

std::string quoted(std::string_view key) {
    constexpr std::size_t kLongestShown = 64;
    if (key.size() > kLongestShown) return "of " + std::to_string(key.size()) + " bytes";
    return "\"" + std::string(key) + "\"";
}

// What each key must hold; the answer completes "The value of ... ".

const char* faultInNumber(const Value& value) {
    if (!value.isInteger()) return "is no integer";
    using Limits = std::numeric_limits<std::int32_t>;
    const bool fits = value.integer() >= Limits::min() && value.integer() <= Limits::max();
    return fits ? nullptr : "does not fit in 32 bits";
}

const char* faultInWideNumber(const Value& value) {
    return value.isInteger() ? nullptr : "is no integer";
}

const char* faultInList(const Value& value) {
    return value.isArray() ? nullptr : "is no array";
}

constexpr struct {
    std::string_view key;
    const char* (*faultIn)(const Value&);
} kKeys[] = {
    {preferences::kCheckUpdates, faultInNumber},     {preferences::kCheckUpdatesFrequency, faultInNumber},
    {preferences::kShowInMenuBar, faultInNumber},    {preferences::kEnableNetworkAdministration, faultInNumber},
    {preferences::kPrefsVersion, faultInWideNumber}, {preferences::kScheduleArray, faultInList},
};

}  // namespace

std::optional<std::string> faultInPreference(std::string_view key, const Value& value) {
    const auto* known = std::ranges::find(kKeys, key, [](const auto& one) { return one.key; });
    if (known == std::end(kKeys)) return "The key " + quoted(key) + " is unknown.";
    if (value.isAbsent()) return "The key " + quoted(key) + " is missing.";
    if (const char* fault = known->faultIn(value)) return "The value of " + quoted(key) + " " + fault + ".";
    return {};
}

std::optional<std::string> faultInPreferences(const Value& preferences) {
    if (!preferences.isDictionary()) return "The preferences are no dictionary.";
    for (const auto& one : kKeys)
        if (auto fault = faultInPreference(one.key, preferences[one.key])) return fault;
    const Dictionary& entries = preferences.dictionary();
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (auto fault = faultInPreference(entries.keyAt(i), entries.valueAt(i))) return fault;
    const Array& schedules = preferences[preferences::kScheduleArray].array();
    const auto wrong = std::ranges::find_if(schedules, [](const Value& schedule) { return !schedule.isDictionary(); });
    if (wrong == schedules.end()) return {};
    return "In \"" + std::string(preferences::kScheduleArray) + "\", entry " +
           std::to_string(wrong - schedules.begin() + 1) + " is no dictionary.";
}

Value storablePreferences(const Value& stored) {
    Dictionary result;
    for (const auto& [key, faultIn] : kKeys)
        result.set(key, faultIn(stored[key]) ? Value(stored[key].intValue()) : stored[key]);
    Array schedules = stored[preferences::kScheduleArray].array();
    std::erase_if(schedules, [](const Value& one) { return !one.isDictionary(); });
    result.set(preferences::kScheduleArray, std::move(schedules));
    return result;
}

bool areSamePreferences(const Value& a, const Value& b) {
    return a.with(preferences::kPrefsVersion, 0) == b.with(preferences::kPrefsVersion, 0);
}

}  // namespace quorel
