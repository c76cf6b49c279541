#include "model/Value.h"

#include <gtest/gtest.h>

#include <limits>

#include "model/Dictionary.h"

namespace quorel {
namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr std::int64_t kHighestInteger = std::numeric_limits<std::int64_t>::max();

TEST(ValueTest, IntValueOfEveryKind) {
    struct {
        Value value;
        int number;
    } const cases[] = {
        {{}, 0},
        {true, 1},
        {7, 7},
        {std::int64_t{kHighest} + 1, kLowest},
        {(std::int64_t{1} << 32) + 5, 5},
        {kHighestInteger, -1},
        {2.9, 2},
        {-2.9, -2},
        {1e300, kHighest},
        {-1e300, kLowest},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {"", 0},
        {"23", 23},
        {"08", 8},
        {" \t\n+7 pm", 7},
        {"-12x", -12},
        {"- 1", 0},
        {"+-1", 0},
        {"x1", 0},
        {"2147483648", kHighest},
        {"-2147483649", kLowest},
        {"99999999999999999999999999", kHighest},
        {std::string("4\0"
                     "2",
                     3),
         4},
        {Date{5e9}, 0},
        {Data{7}, 0},
        {Array{7}, 0},
        {Dictionary{{"k", 7}}, 0},
    };
    for (const auto& [value, number] : cases) EXPECT_EQ(value.intValue(), number) << &value - &cases[0].value;
}

TEST(ValueTest, KindsAndContentsAreToldApart) {
    const Value values[] = {{},
                            true,
                            false,
                            1,
                            0,
                            1.0,
                            "1",
                            "",
                            Date{1},
                            Data{},
                            Data{1},
                            Array{},
                            Array{1},
                            Array{1.0},
                            Array{true},
                            Dictionary(),
                            Dictionary{{"a", 1}},
                            Dictionary{{"b", 1}},
                            Dictionary{{"a", true}},
                            Dictionary{{"a", 1}, {"b", 1}}};
    for (const Value& a : values) {
        for (const Value& b : values) EXPECT_EQ(a == b, &a == &b);
    }
}

TEST(ValueTest, EqualWhereverTheContentLies) {
    const auto make = [] {
        return Value(Dictionary{{"list", Array{1, "two", Data{3}, Date{4}, 5.5, true, Dictionary{{"k", "v"}}}}});
    };
    const Value one = make(), other = make();
    EXPECT_EQ(one, other);
    Value number = 5;
    const Value taken = std::move(number);
    EXPECT_EQ(number, Value());  // NOLINT: what was moved from is absent
    EXPECT_EQ(taken, Value(5));
}

TEST(ValueTest, WrongKindsAnswerEmptyContents) {
    for (const Value& value : {Value(), Value(true), Value(Array{1}), Value("text"), Value(Dictionary{{"k", 1}})}) {
        if (!value.isText()) EXPECT_EQ(value.text(), "");
        if (!value.isArray()) EXPECT_TRUE(value.array().empty());
        EXPECT_TRUE(value["missing"].isAbsent());
        EXPECT_TRUE(value.data().empty());
        EXPECT_EQ(value.integer(), 0);
        EXPECT_EQ(value.real(), 0);
        EXPECT_EQ(value.date(), Date{});
    }
}

TEST(ValueTest, ChangedCopiesLeaveTheOriginalAlone) {
    const Value original(Dictionary{{"a", 1}, {"b", 2}});
    EXPECT_EQ(original.with("b", 3), Value(Dictionary{{"a", 1}, {"b", 3}}));
    EXPECT_EQ(original.with("a", {}).with("b", {}), Value(Dictionary()));
    EXPECT_EQ(original, Value(Dictionary{{"a", 1}, {"b", 2}}));
    EXPECT_EQ(Value("text").with("a", 1), Value(Dictionary{{"a", 1}}));
    Value self = original;
    self = self["a"];  // out of what the assignment lets go
    EXPECT_EQ(self, Value(1));
}

}  // namespace
}  // namespace quorel
