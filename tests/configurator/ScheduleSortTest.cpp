#include <limits>

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
                           at("c", 8, 5).with("Active On Monday", true), at("d", 8, 30)});
    configurator->setScheduleArray(list);
    // Equal times, and rows that are both set or unset, stay as they were.
    const std::pair<const char*, const char*> clicks[] = {{"Infos", "cbda"},
                                                          {"Infos", "abdc"},
                                                          {"Active On Monday", "bcad"},
                                                          {"Active On Monday", "adbc"},
                                                          {"Infos", "cdba"}};
    for (const auto& [column, order] : clicks) {
        const int reloads = ui.table->reloads;
        EXPECT_TRUE(ui.table->clickHeader(column));
        EXPECT_EQ(tags(), order);
        EXPECT_EQ(ui.table->reloads, reloads + 1);
    }

    ConfiguratorInterface otherUi;
    const auto other = VXConfigurator::init(bundle, otherUi, host.platform);
    other->setScheduleArray(list);
    otherUi.table->clickHeader("Active On Monday");
    EXPECT_EQ(tags(), "cdba");
    configurator->setLocked(true);
    ui.table->clickHeader("Infos");  // the other table had the turn in between
    EXPECT_EQ(tags(), "cdba");
    EXPECT_EQ(posted(), 0u);
}

}  // namespace
}  // namespace quorel::test
