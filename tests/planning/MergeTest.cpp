#include "planning/Merge.h"

#include <gtest/gtest.h>

#include <string>

#include "model/Dictionary.h"
#include "planning/PreferencesCheck.h"

namespace quorel {
namespace {

using Pairs = std::vector<std::pair<Value, Value>>;

/// A Schedule a letter.
Value listOf(std::string_view letters) {
    Array list;
    for (const char letter : letters) list.push_back(Dictionary{{"Action Type", std::string(1, letter)}});
    return list;
}

std::string lettersOf(const Value& list) {
    std::string letters;
    for (const Value& one : list.array()) letters += one["Action Type"].text();
    return letters;
}

Value preferencesOf(const Value& list, int version = 1) {
    return Dictionary{{"Check Updates", 1},       {"Check Updates Frequency", 0},
                      {"Show In Menu Bar", 0},    {"Enable Network Administration", 0},
                      {"Prefs Version", version}, {"Schedule Array", list}};
}

TEST(MergeTest, Lists) {
    const struct {
        const char* what;
        const char *base, *stored, *sent, *result;  // the same as stored: nothing is to be stored
        std::size_t others = 0;
        const char* both = "";  // theirs, own
    } cases[] = {
        {"nobody did anything", "ab", "ab", "ab", "ab"},
        {"the sender alone", "abc", "abc", "caXX", "caXX"},
        {"unedited, another added", "ab", "abc", "ab", "abc", 1},
        {"both added", "ab", "abX", "abY", "abXY", 1},
        {"both added at the front", "ab", "Xab", "Yab", "XYab", 1},
        {"both added the same", "ab", "abX", "abX", "abX"},
        {"both added the same, one twice", "ab", "abX", "abXX", "abXXX", 1},
        {"both removed one", "abc", "bc", "ab", "b"},
        {"both removed the same", "abc", "ac", "ac", "ac"},
        {"one added, one removed", "abc", "abcX", "bc", "bcX", 1},
        {"others removed what the sender changed", "abc", "ac", "aYc", "aYc"},
        {"the sender removed what others changed", "abc", "aXc", "ac", "aXc", 1},
        {"both changed one, alike", "abc", "aXc", "aXc", "aXc"},
        {"both changed one, not alike", "abc", "aXc", "aYc", "aXYc", 1, "XY"},
        {"both changed two, one of them alike", "abc", "XZc", "YZc", "XYZc", 1, "XY"},
        {"the first is changed, others added", "ab", "abX", "Yb", "YbX", 1},
        {"the only one is changed, others added", "a", "aX", "Y", "YX", 1},
        {"each changed another", "abc", "Xbc", "abY", "XbY", 1},
        {"others sorted, the sender changed", "abc", "cba", "aYc", "cYa"},
        {"the sender sorted, others added", "abc", "abXc", "cba", "cbXa", 1},
        {"both sorted", "abc", "bca", "cab", "cab"},
        {"the sender sorted as others had", "abc", "cab", "cab", "cab"},
        {"the sender sorted, others changed", "abc", "aXc", "cba", "caX", 1},
        {"of two alike each removed one", "aab", "ab", "ab", "ab"},
        {"of two alike one removed, one added", "aab", "ab", "aaab", "aab"},
        {"two alike, others removed both", "aab", "b", "aabY", "bY"},
        {"a face dropped what it did not know", "ac", "abc", "acY", "abcY", 1},
        {"and removed the line before it", "ac", "abc", "c", "bc", 1},
        {"seeds over a plan", "sw", "ab", "sw", "ab", 2},
        {"seeds, one of them changed, over a plan", "sw", "ab", "sY", "abY", 2, "bY"},
        {"the sender removed all", "ab", "abX", "", "X", 1},
        {"others removed all", "ab", "", "abY", "Y"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        const Value stored = preferencesOf(listOf(one.stored), 7);
        const Merged merged = merge(stored, preferencesOf(listOf(one.base)), false, preferencesOf(listOf(one.sent), 2));
        const std::string_view result = one.result;
        if (result == one.stored) EXPECT_TRUE(merged.preferences.isAbsent());
        if (result != one.stored) EXPECT_EQ(merged.preferences, preferencesOf(listOf(one.result), 2));
        EXPECT_EQ(merged.others, one.others);
        std::string both;
        for (const auto& [theirs, own] : merged.both) both += lettersOf(Array{theirs, own});
        EXPECT_EQ(both, one.both);
    }
}

TEST(MergeTest, NothingStored) {
    const Value seeds = preferencesOf(listOf("sw")), edited = preferencesOf(listOf("sY"));
    const Value foreign = preferencesOf(listOf("ab"));
    const struct {
        const char* what;
        Value stored;
        bool nothingRead;
        Value sent, result;
    } cases[] = {
        {"then and now: seeds are stored", {}, true, seeds, seeds},
        {"then and now, edited", {}, true, edited, edited},
        {"a plan has come, seeds stay out", foreign, true, seeds, {}},
        {"a plan has come, edits join it", foreign, true, edited, preferencesOf(listOf("abY"))},
        {"the file has gone, nothing was edited", {}, false, seeds, {}},
        {"the file has gone, something was", {}, false, edited, edited},
    };
    for (const auto& one : cases)
        EXPECT_EQ(merge(one.stored, seeds, one.nothingRead, one.sent).preferences, one.result) << one.what;
}

TEST(MergeTest, Options) {
    static constexpr std::string_view kMenu = "Show In Menu Bar";
    const auto with = [](const Value& value) { return preferencesOf(listOf("a")).with(kMenu, value); };
    const struct {
        const char* what;
        Value base, stored, sent, result;  // absent: nothing is to be stored
    } cases[] = {
        {"2, shown as off and left so", 0, 2, 0, {}},
        {"2, shown as off, switched on", 0, 2, 1, 1},
        {"switched by others", 0, 1, 0, {}},
        {"switched by both, alike", 0, 1, 1, {}},
        {"set by both, the sender's counts", 0, 5, 1, 1},
        {"missing in a file made by hand, left alone", 0, {}, 0, {}},
    };
    for (const auto& one : cases) {
        const Value result = merge(with(one.stored), with(one.base), false, with(one.sent)).preferences;
        EXPECT_EQ(result, one.result.isAbsent() ? Value() : with(one.result)) << one.what;
    }
}

TEST(MergeTest, WhatMayNotBeStoredKeepsNobodyFromSaving) {
    const Value stored(Dictionary{{"Check Updates", "x"}, {"Extra", 1}, {"Schedule Array", Array{5, Dictionary()}}});
    const Value base = preferencesOf(Array{Dictionary()});
    EXPECT_TRUE(merge(stored, base, false, base).preferences.isAbsent());
    const Value result = merge(stored, base, false, preferencesOf(listOf("a"))).preferences;
    EXPECT_EQ(result, preferencesOf(listOf("a")));
    EXPECT_EQ(faultInPreferences(result), std::nullopt);
}

TEST(MergeTest, KindsAreKept) {
    const auto at = [](const Value& hour) { return preferencesOf(Array{Dictionary{{"Action Hour", hour}}}); };
    EXPECT_EQ(merge(at("7"), at(7), false, at(8)).preferences["Schedule Array"].array().size(), 2U);
    // What a file has alike is alike.
    EXPECT_EQ(merge(at(Date{1.25}), at(Date{1}), false, at(8)).preferences, at(8));
}

}  // namespace
}  // namespace quorel
