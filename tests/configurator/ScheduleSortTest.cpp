#include <algorithm>
#include <limits>
#include <random>

#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

class ScheduleSortTest : public ConfiguratorTest {
protected:
    /// The direction is the process's: the next click is made to sort unreversed.
    void SetUp() override {
        startWithModules();
        configurator->setScheduleArray(Value(Array{at("b", 2, 0), at("a", 1, 0)}));
        ui.table->clickHeader("Infos");
        if (tags() == "ab") ui.table->clickHeader("Infos");
    }
    static Value at(std::string_view tag, Value hour, Value minute) {
        return Value(Dictionary{{"Tag", tag},
                                {"Action Type", schedule_keys::kSleepType},
                                {"Action Hour", hour},
                                {"Action Minute", minute}});
    }
    static Value flagged(std::string_view tag, Value flag) {
        return tagged(tag).with("Active On Monday", std::move(flag));
    }
};

TEST_F(ScheduleSortTest, ComparesAsRuled) {
    using enum ComparisonResult;
    struct {
        const char* column;
        Value a, b;
        ComparisonResult forward, backward;  // of (a, b) and (b, a)
    } const cases[] = {
        {"Infos", at("", 1, 30), at("", 2, 0), Ascending, Descending},
        {"Infos", at("", "7", "00"), at("", 7, 5), Ascending, Descending},
        {"Infos", at("", 7, 0), at("", "7", "00"), Descending, Descending},
        {"Infos", at("", {}, {}), at("", 0, 0), Descending, Descending},
        {"Infos", at("", kLowest, kHighest), at("", kHighest, kLowest), Ascending, Descending},
        {"Active On Monday", flagged("", true), flagged("", {}), Ascending, Descending},
        {"Active On Monday", flagged("", 1), flagged("", "1"), Same, Same},
        {"Active On Monday", flagged("", 0), flagged("", Dictionary{{"k", 1}}), Same, Same},
        {"Active On Monday", flagged("", 256), flagged("", 255), Descending, Ascending},
        {"Active On Monday", flagged("", -1), flagged("", -256), Ascending, Descending},
        {"Active On Monday", "no Schedule", Value(), Same, Same},
    };
    const auto reverse = [](ComparisonResult result) {
        return result == Same ? Same : result == Ascending ? Descending : Ascending;
    };
    for (const auto& [column, a, b, forward, backward] : cases) {
        const Value plain(Dictionary{{"Colomn identifier", column}, {"Order", false}});
        EXPECT_EQ(sortColomnFunction(a, b, plain), forward);
        EXPECT_EQ(sortColomnFunction(b, a, plain), backward);
        for (const Value& order : {Value(true), Value(-1), Value("1")}) {
            EXPECT_EQ(sortColomnFunction(a, b, plain.with("Order", order)), reverse(forward));
        }
        EXPECT_EQ(sortColomnFunction(a, b, plain.with("Order", 256)), forward);
    }
}

TEST_F(ScheduleSortTest, DirectionAlternatesOverColumnsAndTables) {
    const Value list(Array{at("a", 9, 0).with("Active On Monday", 0), at("b", "8", "30").with("Active On Monday", 1),
                           at("c", 8, 5).with("Active On Monday", true)});
    configurator->setScheduleArray(list);
    EXPECT_TRUE(ui.table->clickHeader("Infos"));
    EXPECT_EQ(tags(), "cba");
    ui.table->clickHeader("Infos");
    EXPECT_EQ(tags(), "abc");
    ui.table->clickHeader("Infos");
    EXPECT_EQ(tags(), "cba");
    ui.table->clickHeader("Active On Monday");  // reversed: unset rows first, equal rows as they were
    EXPECT_EQ(tags(), "acb");

    ConfiguratorInterface otherUi;
    const auto other = VXConfigurator::init(bundle, otherUi, host.platform);
    other->setScheduleArray(list);
    otherUi.table->clickHeader("Active On Monday");
    EXPECT_EQ(tags(), "acb");
    configurator->setLocked(true);
    ui.table->clickHeader("Infos");  // the other table had the turn in between
    EXPECT_EQ(tags(), "abc");
    EXPECT_EQ(posted(), 0u);
}

TEST_F(ScheduleSortTest, AgreesWithTheComparisonAndKeepsEqualSchedulesInOrder) {
    std::mt19937 random(20240315);
    const Value numbers[] = {-1, 0, 1, 2, "2", "07", 2.9, true, {}, kHighest, kLowest, "x", 258, std::int64_t{1} << 40};
    const auto number = [&] { return numbers[random() % std::size(numbers)]; };
    for (const char* column : {"Infos", "Active On Monday"}) {
        for (int round = 0; round < 60; ++round) {
            Array list;
            for (std::size_t i = 0; i < random() % 70 + 1; ++i) {
                list.push_back(at("", number(), number()).with("Active On Monday", number()).with("Was", int(i)));
            }
            configurator->setScheduleArray(Value(list));
            ui.table->clickHeader(column);
            const Array& sorted = configurator->scheduleArray();
            EXPECT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), list.begin(), list.end(),
                                            [](const Value& a, const Value& b) { return a.isIdenticalTo(b); }));
            const Value context(Dictionary{{"Colomn identifier", column}, {"Order", round % 2 == 1}});
            for (std::size_t i = 1; i < sorted.size(); ++i) {
                const auto forward = sortColomnFunction(sorted[i - 1], sorted[i], context);
                const auto backward = sortColomnFunction(sorted[i], sorted[i - 1], context);
                const bool alike = forward == backward;
                EXPECT_TRUE(alike || forward == ComparisonResult::Ascending) << column << round;
                if (alike) EXPECT_LT(sorted[i - 1]["Was"].intValue(), sorted[i]["Was"].intValue());
            }
        }
    }
}

}  // namespace
}  // namespace quorel::test
