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
    EXPECT_FALSE(ui.progressMain->running);
    EXPECT_FALSE(configurator->tableViewShouldEditTableColumnRow(*table.columns[0], 0));
}

TEST_F(ScheduleTableTest, LockMakesFreshCellsAndClearsTheSelection) {
    startWithModules();
    configurator->setScheduleArray(listOf("abc"));
    const auto selectUnasked = [&](std::set<int> rows) {  // as a table may that does not ask its delegate
        ui.table->delegate = nullptr;
        ui.table->selectRows(std::move(rows));
        ui.table->delegate = configurator.get();
    };
    for (const bool locked : {true, false, true}) {
        selectUnasked({0, 2});
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

        if (locked) selectUnasked({0, 1});
        EXPECT_EQ(ui.table->selectRows({1}), !locked);
        EXPECT_EQ(ui.table->numberOfSelectedRows(), locked ? 0 : 1);
        EXPECT_EQ(ui.deleteButton->isEnabled(), !locked);
        EXPECT_EQ(ui.editButton->isEnabled(), !locked);
    }
}

TEST_F(ScheduleTableTest, ToggleFlipsWhatIsStored) {
    startWithModules();
    struct {
        Value stored, after;
    } const cases[] = {{{}, 1}, {0, 1}, {1, 0}, {true, 0}, {"1", 0}, {2, 2}, {"2", "2"}, {-1, -1}, {Array{1}, 1}};
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
            EXPECT_TRUE(entry(0) == untouched && entry(2) == untouched);
            EXPECT_EQ(posted(), posts + 1);
            EXPECT_EQ(ui.table->reloads, reloads + 1);
        }
    }
}

// The controls are disabled while locked; what is sent all the same is done, but for what the keyboard could do else.
TEST_F(ScheduleTableTest, MostCommandsHaveNoLockTest) {
    startWithModules();
    const auto lockedWith = [&](const char* list) {
        configurator->setScheduleArray(listOf(list));
        configurator->setLocked(true);
        ui.table->delegate = nullptr;
        ui.table->selectRows({0});
        ui.table->delegate = configurator.get();
    };
    lockedWith("abc");
    EXPECT_FALSE(ui.table->clickCell(0, "Is Enabled"));
    configurator->toggleEnabled(nullptr);
    configurator->editSchedule(nullptr);
    EXPECT_FALSE(ui.table->drag({1}, 3));
    EXPECT_TRUE(ui.table->pasteboard.types.empty());
    EXPECT_EQ(Value(configurator->scheduleArray()), listOf("abc"));
    EXPECT_TRUE(host.application.begun.empty());
    EXPECT_EQ(posted(), 0u);

    configurator->tableViewSetObjectValueForTableColumnRow({}, *ui.table->columns[0], 2);
    EXPECT_EQ(entry(2)["Is Enabled"], Value(1));
    configurator->setLocked(false);
    configurator->tableViewWriteRowsToPasteboard({2}, ui.table->pasteboard);
    configurator->setLocked(true);
    EXPECT_TRUE(configurator->tableViewAcceptDropRowDropOperation(0, DropOperation::Above));
    EXPECT_EQ(tags(), "cab");
    lockedWith("abc");
    configurator->deleteSchedule(nullptr);
    EXPECT_EQ(tags(), "bc");
    host.application.duringNextModal([&] { ui.cancelButton->act(); });
    configurator->addSchedule(nullptr);
    EXPECT_EQ(host.application.begun.size(), 1u);
}

TEST_F(ScheduleTableTest, TheKeyboardTogglesTheSelectedRow) {
    startWithModules();
    configurator->setScheduleArray(listOf("ab"));
    configurator->toggleEnabled(nullptr);
    EXPECT_EQ(posted(), 0u);
    ui.table->selectRows({1});
    configurator->toggleEnabled(nullptr);
    EXPECT_EQ(entry(1)["Is Enabled"], Value(1));
    EXPECT_TRUE(entry(0)["Is Enabled"].isAbsent());
    EXPECT_EQ(posted(), 1u);
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
    EXPECT_EQ(wakeUp->calls, (std::vector<std::string>{"loadNib", "setParameters none", "setParameters",
                                                       "setParameters none", "setParameters"}));
    configurator->unloadModules();
    EXPECT_TRUE(ui.table->valueAt(0, "Infos").isAbsent());
    EXPECT_EQ(ui.table->valueAt(0, "Is Enabled"), Value(1));
}

TEST_F(ScheduleTableTest, TimesAreWrittenInTheUsersStyle) {
    startWithModules();
    const auto at = [](Value hour, Value minute) {
        return tagged("a").with("Action Hour", std::move(hour)).with("Action Minute", std::move(minute));
    };
    configurator->setScheduleArray(Value(Array{at("23", "00"), at(23, 0), at(0, 23), at({}, {}), at(7, 75)}));
    const auto times = [&] {
        std::string all;
        for (int row = 0; row < 5; ++row) all += ui.table->valueAt(row, "Infos")["Time"].text() + " ";
        return all;
    };
    EXPECT_EQ(times(), "23:00 23:00 00:23 00:00 08:15 ");
    host.timeFormat.separator = '.';
    EXPECT_EQ(times(), "23.00 23.00 00.23 00.00 08.15 ");

    // A module may run an event loop, in which anything happens to the list.
    sleep->whenGivenParameters = [&] { configurator->setScheduleArray(listOf("xyz")); };
    EXPECT_EQ(ui.table->valueAt(4, "Infos")["Time"].text(), "08.15");
}

TEST_F(ScheduleTableTest, RowsThatAreGoneAnswerNothing) {
    startWithModules();
    configurator->setScheduleArray(listOf("ab"));
    EXPECT_FALSE(configurator->tableViewAcceptDropRowDropOperation(1, DropOperation::Above)) << "nothing was dragged";
    for (const int row : {std::numeric_limits<int>::min(), -1, 2, std::numeric_limits<int>::max()}) {
        for (const auto& column : ui.table->columns) {
            EXPECT_TRUE(configurator->tableViewObjectValueForTableColumnRow(*column, row).isAbsent());
            configurator->tableViewSetObjectValueForTableColumnRow(1, *column, row);
        }
        EXPECT_FALSE(ui.table->drag({row}, 1));
        if (row != 2) EXPECT_FALSE(ui.table->drag({1}, row));
    }
    configurator->tableViewSetObjectValueForTableColumnRow(1, *ui.table->columns[1], 0);
    EXPECT_EQ(Value(configurator->scheduleArray()), listOf("ab"));
    EXPECT_EQ(posted(), 0u);
}

}  // namespace
}  // namespace quorel::test
