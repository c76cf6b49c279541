#include "planning/PreferencesCheck.h"

#include <gtest/gtest.h>

#include <limits>

#include "model/Dictionary.h"

namespace quorel {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();

Value preferencesWith(std::string_view key, Value value) {
    return Value(Dictionary{{"Check Updates", 1},
                            {"Check Updates Frequency", 0},
                            {"Show In Menu Bar", 1},
                            {"Enable Network Administration", 0},
                            {"Prefs Version", 1},
                            {"Schedule Array", Array{}}})
        .with(key, std::move(value));
}

TEST(PreferencesCheckTest, WhatThePaneCanSendIsFine) {
    const Value strangeSchedule(Dictionary{{"Action Hour", Array{}},
                                           {"Action Type", 7},
                                           {"Action Parameters", Dictionary{{"deep", Array{Data{1}, Date{1}, 1.5}}}},
                                           {"a key of its own", "x"}});
    const std::pair<std::string_view, Value> cases[] = {
        {"Check Updates", 0},
        {"Check Updates Frequency", -1},
        {"Check Updates Frequency", 1000},
        {"Show In Menu Bar", 2},
        {"Enable Network Administration", 1},
        {"Prefs Version", kLowest},
        {"Schedule Array", Array{strangeSchedule, Dictionary()}},
    };
    for (const auto& [key, value] : cases) EXPECT_EQ(faultInPreferences(preferencesWith(key, value)), std::nullopt);
}

TEST(PreferencesCheckTest, FaultsAreNamed) {
    const struct {
        std::string_view key;
        Value value;
        const char* fault;
    } cases[] = {
        {"Check Updates", true, "The value of \"Check Updates\" is no integer."},
        {"Check Updates Frequency", "1", "The value of \"Check Updates Frequency\" is no integer."},
        {"Show In Menu Bar", 1.0, "The value of \"Show In Menu Bar\" is no integer."},
        {"Enable Network Administration", Array{}, "The value of \"Enable Network Administration\" is no integer."},
        {"Check Updates", std::int64_t{1} << 31, "The value of \"Check Updates\" does not fit in 32 bits."},
        {"Check Updates Frequency", kLowest, "The value of \"Check Updates Frequency\" does not fit in 32 bits."},
        {"Prefs Version", "1.0", "The value of \"Prefs Version\" is no integer."},
        {"Schedule Array", Dictionary(), "The value of \"Schedule Array\" is no array."},
        {"Schedule Array", Array{Dictionary(), "x"}, "In \"Schedule Array\", entry 2 is no dictionary."},
        {"Schedule Array", Array{7}, "In \"Schedule Array\", entry 1 is no dictionary."},
        {"check updates", 1, "The key \"check updates\" is unknown."},
        {"", 1, "The key \"\" is unknown."},
    };
    for (const auto& [key, value, fault] : cases)
        EXPECT_EQ(faultInPreferences(preferencesWith(key, value)), fault) << key;
    for (const std::string key : {"Check Updates", "Check Updates Frequency", "Show In Menu Bar",
                                  "Enable Network Administration", "Prefs Version", "Schedule Array"})
        EXPECT_EQ(faultInPreferences(preferencesWith(key, {})), "The key \"" + key + "\" is missing.");
    EXPECT_EQ(faultInPreferences(preferencesWith(std::string(100'000, 'x'), 1)), "The key of 100000 bytes is unknown.");
    for (const Value& value : {Value(), Value(Array{}), Value("text")})
        EXPECT_EQ(faultInPreferences(value), "The preferences are no dictionary.");
    // As they are read by all: off.
    const Value off = preferencesWith("Show In Menu Bar", 0).with("Check Updates", 0);
    EXPECT_EQ(storablePreferences(off.with("Show In Menu Bar", false).with("Check Updates", {})), off);
}

}  // namespace
}  // namespace quorel
