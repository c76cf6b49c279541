#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

using ScheduleListTest = ConfiguratorTest;

Value freshSchedule(const char* type, const char* hour, const Value& parameters) {
    Dictionary fresh{
        {"Is Enabled", 1},
        {"Action Type", type},
        {"Action Hour", hour},
        {"Action Minute", "00"},
    };
    for (const auto* day : {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"}) {
        fresh.set(std::string("Active On ") + day, true);
    }
    fresh.set("Action Parameters", parameters);
    return fresh;
}

TEST_F(ScheduleListTest, SeedsWhateverHoldsNoSchedules) {
    startWithModules();
    wakeUp->defaults = Value();
    const Array seeded = {freshSchedule("com.quorel.plugin.Sleep", "23", sleep->defaults),
                          freshSchedule("com.quorel.plugin.WakeUp", "7", Value())};
    for (const Value& list : {Value(), Value(Array()), Value("no list"), Value(7), tagged("a")}) {
        configurator->setScheduleArray(listOf("xyz"));
        configurator->setScheduleArray(list);
        EXPECT_EQ(configurator->scheduleArray(), seeded);
    }
    EXPECT_EQ(posted(), 0u);
}

TEST_F(ScheduleListTest, SeedsOnlyWhatHasAModuleAndOnlyOnce) {
    start();
    configurator->setScheduleArray(Value());
    EXPECT_TRUE(configurator->scheduleArray().empty());

    wakeUp = install(schedule_keys::kWakeUpType, "WakeUp");
    configurator->loadModules();
    configurator->setScheduleArray(Value());
    ASSERT_EQ(configurator->scheduleArray().size(), 1u);
    EXPECT_EQ(entry(0)["Action Type"].text(), schedule_keys::kWakeUpType);
}

TEST_F(ScheduleListTest, DropsSchedulesWithoutModule) {
    startWithModules();
    const Value gone = tagged("?", "com.quorel.plugin.Gone");
    const Value a = tagged("a"), b = tagged("b", schedule_keys::kWakeUpType), c = tagged("c");
    const auto typed = [](Value type) { return Value(Dictionary{{"Tag", "?"}, {"Action Type", std::move(type)}}); };
    struct {
        Array list;
        const char* left;
    } const cases[] = {
        {{a, b, c}, "abc"},
        {{a, gone, c}, "ac"},
        {{gone, gone, a, gone, gone, b, gone}, "ab"},
        {{gone, gone}, ""},
        {{typed({}), typed(Dictionary{{"k", 1}}), typed(Array{"com.quorel.plugin.Sleep"}), typed(1), typed(""), c},
         "c"},
        {{"text", 1, 2.5, true, Array{a}, Value(), Value(Dictionary()), b}, "b"},
        {{typed("com.quorel.plugin.sleep"), typed("com.quorel.plugin.Sleep ")}, ""},
    };
    for (const auto& [list, left] : cases) {
        const int reloads = ui.table->reloads;
        configurator->setScheduleArray(Value(list));
        EXPECT_EQ(tags(), left);
        EXPECT_EQ(configurator->scheduleArray().size(), std::string_view(left).size())
            << "seeded only when handed none";
        EXPECT_EQ(ui.table->reloads, reloads + 1);
    }
    EXPECT_EQ(posted(), 0u);
}

TEST_F(ScheduleListTest, NewScheduleIsOfTheRarerType) {
    install("other", "Other");
    startWithModules();
    struct {
        int sleeps, wakeUps;
        std::string_view type, hour;
    } const cases[] = {
        {0, 0, schedule_keys::kSleepType, "23"}, {1, 0, schedule_keys::kWakeUpType, "7"},
        {1, 1, schedule_keys::kSleepType, "23"}, {2, 1, schedule_keys::kWakeUpType, "7"},
        {0, 3, schedule_keys::kSleepType, "23"},
    };
    for (const auto& [sleeps, wakeUps, type, hour] : cases) {
        Array list = {tagged("o", "other")};
        for (int i = 0; i < sleeps; ++i) list.push_back(tagged("s", schedule_keys::kSleepType));
        for (int i = 0; i < wakeUps; ++i) list.push_back(tagged("w", schedule_keys::kWakeUpType));
        configurator->setScheduleArray(Value(list));
        EXPECT_EQ(configurator->numberOfActionInScheduleArrayOfType(schedule_keys::kSleepType), sleeps);
        EXPECT_EQ(configurator->numberOfActionInScheduleArrayOfType(schedule_keys::kWakeUpType), wakeUps);
        EXPECT_EQ(configurator->numberOfActionInScheduleArrayOfType("com.quorel.plugin"), 0);
        EXPECT_EQ(configurator->numberOfActionInScheduleArrayOfType(""), 0);
        const Value fresh = configurator->newEmptySchedule();
        EXPECT_EQ(fresh["Action Type"].text(), type);
        EXPECT_EQ(fresh["Action Hour"], Value(hour));
    }
}

TEST_F(ScheduleListTest, DeleteRefusesTheLastScheduleAndNoSelection) {
    startWithModules();
    struct {
        const char* list;
        std::set<int> selection;
        const char* left;
    } const cases[] = {
        {"ab", {1}, "a"}, {"ab", {0}, "b"}, {"abc", {1}, "ac"}, {"a", {0}, "a"}, {"ab", {}, "ab"}, {"ab", {7}, "ab"},
    };
    for (const auto& [list, selection, left] : cases) {
        configurator->setScheduleArray(listOf(list));
        ui.table->selectRows(selection);
        const bool removes = std::string(list) != left;
        const int beeps = host.application.beeps;
        const int reloads = ui.table->reloads;
        const std::size_t posts = posted();
        configurator->deleteSchedule(nullptr);
        EXPECT_EQ(tags(), left);
        EXPECT_EQ(host.application.beeps - beeps, removes ? 0 : 1);
        EXPECT_EQ(posted() - posts, removes ? 1u : 0u);
        EXPECT_EQ(ui.table->reloads - reloads, removes ? 1 : 0);
        if (selection.empty() || selection.contains(7)) configurator->editSchedule(nullptr);  // nor is it edited
    }
    EXPECT_TRUE(host.application.begun.empty());
    const Notification& notification = host.defaultCenter.posted.front();
    EXPECT_EQ(notification.name, "kMOLConfiguratorHasBeenEditedNotification");
    EXPECT_FALSE(notification.object);
    EXPECT_TRUE(notification.userInfo.isAbsent());
}

}  // namespace
}  // namespace quorel::test
