#include <limits>

#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

using ScheduleTableTest = ConfiguratorTest;

const std::vector<std::string> kCheckBoxColumns = {"Is Enabled",          "Active On Monday",   "Active On Tuesday",
                                                   "Active On Wednesday", "Active On Thursday", "Active On Friday",
                                                   "Active On Saturday",  "Active On Sunday"};

TEST_F(ScheduleTableTest, NeedsItsInterfaceFile) {
    ui.loadable = false;
    EXPECT_FALSE(VXConfigurator::init(bundle, ui, host.platform));
}

TEST_F(ScheduleTableTest, AwakesWithModulesAndUnlockedTable) {
    startWithModules();
    EXPECT_EQ(configurator->plugins()->size(), 2u);
    EXPECT_FALSE(configurator->isLocked());
    EXPECT_EQ(configurator->configurationView(), ui.mainView);
    const auto& table = *ui.table;
    EXPECT_EQ(table.target, configurator.get());
    EXPECT_EQ(table.delegate, configurator.get());
    EXPECT_EQ(table.rowHeight, 28);
    EXPECT_TRUE(table.allowsColumnSelection);
    EXPECT_FALSE(table.verticalMotionCanBeginDrag);
    EXPECT_EQ(table.draggedTypes, std::vector<std::string>{"SchedulePasteboard"});
    EXPECT_EQ(ui.timeControl->delegate, configurator.get());
    EXPECT_EQ(ui.progressMain->starts, 1);
    EXPECT_FALSE(ui.progressMain->running);
    EXPECT_EQ(configurator->numberOfRowsInTableView(*ui.table), 0);
    EXPECT_FALSE(configurator->tableViewShouldEditTableColumnRow(*ui.table, *table.columns[0], 0));
}

TEST_F(ScheduleTableTest, LockMakesFreshCellsAndClearsTheSelection) {
    startWithModules();
    configurator->setScheduleArray(listOf("abc"));
    for (const bool locked : {true, false, true}) {
        ui.table->selectRows({0, 2});
        std::vector<std::shared_ptr<Cell>> earlier;
        for (const auto& column : ui.table->columns) earlier.push_back(column->cell);
        configurator->setLocked(locked);
        EXPECT_EQ(ui.table->numberOfSelectedRows(), 0);
        EXPECT_EQ(ui.addButton->isEnabled(), !locked);
        EXPECT_FALSE(ui.deleteButton->isEnabled());
        EXPECT_FALSE(ui.editButton->isEnabled());
        for (std::size_t i = 0; i < earlier.size(); ++i) EXPECT_NE(ui.table->columns[i]->cell, earlier[i]);
        for (const auto& identifier : kCheckBoxColumns) {
            const auto column =
                std::dynamic_pointer_cast<headless::TableColumn>(ui.table->tableColumnWithIdentifier(identifier));
            const auto cell = std::dynamic_pointer_cast<headless::ButtonCell>(column->cell);
            ASSERT_TRUE(cell) << identifier;
            EXPECT_EQ(cell->enabled, !locked);
            EXPECT_EQ(cell->target, configurator.get());
            EXPECT_EQ(cell->title, "");
            EXPECT_EQ(cell->type, ButtonType::Switch);
            EXPECT_EQ(cell->size, ControlSize::Small);
            EXPECT_EQ(cell->position, ImagePosition::ImageOnly);
        }
        const auto infos = std::dynamic_pointer_cast<headless::ConfiguratorCell>(ui.table->columns[1]->cell);
        ASSERT_TRUE(infos);
        EXPECT_EQ(infos->enabled, !locked);
        EXPECT_EQ(infos->target, configurator.get());

        EXPECT_EQ(ui.table->selectRows({1}), !locked);
        EXPECT_EQ(ui.deleteButton->isEnabled(), !locked);
        EXPECT_EQ(ui.editButton->isEnabled(), !locked);
    }
}

TEST_F(ScheduleTableTest, LockedTableLetsGoOfASelection) {
    startWithModules();
    configurator->setScheduleArray(listOf("abc"));
    configurator->setLocked(true);
    ui.table->delegate = nullptr;  // a selection that nobody was asked about
    ui.table->selectRows({0, 1});
    ui.table->delegate = configurator.get();
    EXPECT_FALSE(ui.table->selectRows({2}));
    EXPECT_EQ(ui.table->numberOfSelectedRows(), 0);
}

TEST_F(ScheduleTableTest, ToggleFlipsWhatIsStored) {
    startWithModules();
    struct {
        Value stored, after;
    } const cases[] = {
        {{}, 1},         {0, 1},      {1, 0},   {false, 1}, {true, 0},
        {"0", 1},        {"1", 0},    {2, 2},   {"2", "2"}, {-1, -1},
        {Array{1}, 1},   {"", 1},     {0.5, 1}, {1.9, 0},   {std::numeric_limits<std::int64_t>::min(), 1},
        {Data{1, 2}, 1}, {Date{1}, 1}};
    for (const auto& column : kCheckBoxColumns) {
        for (const auto& [stored, after] : cases) {
            Dictionary original = tagged("a").dictionary();
            original.set(column, stored);
            const Value untouched = tagged("b").with(column, stored);
            configurator->setScheduleArray(Value(Array{untouched, Value(original), untouched}));
            const std::size_t posts = posted();
            const int reloads = ui.table->reloads;
            EXPECT_TRUE(ui.table->clickCell(1, column));
            EXPECT_EQ(entry(1), tagged("a").with(column, after)) << column;
            EXPECT_EQ(Value(original)[column], stored);
            EXPECT_TRUE(entry(0).isIdenticalTo(untouched) && entry(2).isIdenticalTo(untouched));
            EXPECT_EQ(posted(), posts + 1);
            EXPECT_EQ(ui.table->reloads, reloads + 1);
        }
    }
    configurator->setLocked(true);
    EXPECT_FALSE(ui.table->clickCell(0, "Is Enabled"));
}

TEST_F(ScheduleTableTest, SummaryShowsTheModulesWordsForEachRow) {
    startWithModules();
    wakeUp->wakeUpChangeable = false;
    const auto with = [](std::string_view type, Value parameters) {
        return Value(Dictionary{{"Is Enabled", 1},
                                {"Action Type", type},
                                {"Action Hour", "7"},
                                {"Action Minute", "00"},
                                {"Action Parameters", std::move(parameters)}});
    };
    configurator->setScheduleArray(Value(Array{with(schedule_keys::kSleepType, Dictionary{{"n", 1}, {"startup", true}}),
                                               with(schedule_keys::kSleepType, Dictionary{{"n", 2}, {"wake", true}}),
                                               with(schedule_keys::kWakeUpType, {}),
                                               with(schedule_keys::kWakeUpType, Array{"no", "dictionary"})}));
    const auto summary = [](const char* name, const char* action, bool startup, bool wake) {
        return Value(
            Dictionary{{"Name", name}, {"Action", action}, {"Time", "07:00"}, {"Startup", startup}, {"Wake Up", wake}});
    };
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(ui.table->valueAt(1, "Infos"), summary("Sleep", "does 2", false, true));
        EXPECT_EQ(ui.table->valueAt(0, "Infos"), summary("Sleep", "does 1", true, false));
        EXPECT_EQ(ui.table->valueAt(2, "Infos"), summary("WakeUp", "does 0", false, false));
        EXPECT_EQ(ui.table->valueAt(3, "Infos"), summary("WakeUp", "does 0", false, false));
    }
    EXPECT_EQ(host.timeFormat.formats, 1);
    EXPECT_EQ(wakeUp->calls, (std::vector<std::string>{"loadNib", "setParameters none", "setParameters",
                                                       "setParameters none", "setParameters"}));
    configurator->unloadModules();
    EXPECT_TRUE(ui.table->valueAt(0, "Infos").isAbsent());
    EXPECT_EQ(ui.table->valueAt(0, "Is Enabled"), Value(1));
}

TEST_F(ScheduleTableTest, TimesAreWrittenOncePerHourAndMinute) {
    startWithModules();
    constexpr int kHighest = std::numeric_limits<int>::max();
    struct {
        Value hour, minute;
        const char* text;
        int formats;
    } const cases[] = {
        {"23", "00", "23:00", 1},    {23, 0, "23:00", 0},     {0, 23, "00:23", 1}, {{}, {}, "00:00", 1},
        {"25", 0, "01:00", 1},       {7, 75, "08:15", 1},     {0, -1, "23:59", 1}, {-1, 0, "23:00", 1},
        {Array{}, "5x", "00:05", 1}, {0, 5, "00:05", 0},      {7, 75, "08:15", 0}, {-1, -1, "22:59", 1},
        {kHighest, 0, "07:00", 1},   {7.9, true, "07:01", 1},
    };
    Array list;
    for (const auto& [hour, minute, text, formats] : cases) {
        list.push_back(tagged("a").with("Action Hour", hour).with("Action Minute", minute));
    }
    configurator->setScheduleArray(Value(list));
    int row = 0;
    for (const auto& [hour, minute, text, formats] : cases) {
        const int before = host.timeFormat.formats;
        EXPECT_EQ(ui.table->valueAt(row, "Infos")["Time"].text(), text) << row;
        EXPECT_EQ(host.timeFormat.formats - before, formats) << row;
        ++row;
    }
    const int before = host.timeFormat.formats;
    configurator->setScheduleArray(Value(list));
    ui.table->valueAt(0, "Infos");
    EXPECT_EQ(host.timeFormat.formats - before, 1) << "the style may have changed with a new list";
}

TEST_F(ScheduleTableTest, RowsThatAreGoneAnswerNothing) {
    startWithModules();
    configurator->setScheduleArray(listOf("ab"));
    for (const int row : {std::numeric_limits<int>::min(), -1, 2, std::numeric_limits<int>::max()}) {
        for (const auto& column : ui.table->columns) {
            EXPECT_TRUE(configurator->tableViewObjectValueForTableColumnRow(*ui.table, *column, row).isAbsent());
            configurator->tableViewSetObjectValueForTableColumnRow(*ui.table, 1, *column, row);
        }
    }
    configurator->tableViewSetObjectValueForTableColumnRow(*ui.table, 1, *ui.table->columns[1], 0);
    EXPECT_EQ(Value(configurator->scheduleArray()), listOf("ab"));
    EXPECT_EQ(posted(), 0u);
}

}  // namespace
}  // namespace quorel::test
