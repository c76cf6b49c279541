#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

using Calls = std::vector<std::string>;

class EditSheetTest : public ConfiguratorTest {
protected:
    void SetUp() override {
        host.application.main = std::make_shared<headless::Window>();
        startWithModules();
        configurator->resizeEditSheetUsingHeight(0);  // the first of a process differs
    }
    /// A Schedule on all days, with the modules' flags in its parameters.
    static Value complete(std::string_view type = schedule_keys::kSleepType) {
        Dictionary content{{"Is Enabled", 0},     {"Action Type", type},
                           {"Action Hour", "23"}, {"Action Minute", "05"},
                           {"Their Own", "kept"}, {"Action Parameters", Dictionary{{"startup", true}, {"n", 4}}}};
        for (const auto day : schedule_keys::kActiveOnDays) content.set(day, true);
        return content;
    }
    void add(std::function<void()> meanwhile) {
        host.application.duringNextModal(std::move(meanwhile));
        ui.addButton->act();
    }
    void edit(int row, std::function<void()> meanwhile) {
        host.application.duringNextModal(std::move(meanwhile));
        EXPECT_TRUE(ui.table->doubleClickRow(row));
    }
    void save() { ui.saveButton->act(); }
    void cancel() { ui.cancelButton->act(); }
    std::string days() const {
        std::string ticked;
        for (const auto& day : ui.days) ticked += day->state() ? '1' : '0';
        return ticked;
    }
};

TEST_F(EditSheetTest, FillsFromTheScheduleAndRunsOverTheMainWindow) {
    configurator->setScheduleArray(Value(Array{
        complete().with("Active On Tuesday", 0).with("Active On Friday", "0").with("Active On Sunday", Array{})}));
    const int spins = ui.progressMain->starts;
    edit(0, [&] {
        EXPECT_EQ(ui.popUpType->titleOfSelectedItem(), "Sleep");
        EXPECT_EQ(ui.timeControl->dateValue(), (CalendarDate{2024, 3, 15, 23, 5, 0}));
        EXPECT_EQ(days(), "1011010");
        EXPECT_TRUE(ui.startupEdit->state() == 1 && ui.wakeUpEdit->state() == 0);
        EXPECT_EQ(ui.actionStateEdit->imageName(), "StartupDot.png");
        EXPECT_EQ(sleep->current["n"].intValue(), 4);
        EXPECT_EQ(wakeUp->current, wakeUp->defaults);
        EXPECT_TRUE(ui.editSheet->visible && !ui.progressMain->running && !ui.progressEdit->running);
        EXPECT_TRUE(configurator->isEditing() && !configurator->isAdding());
        ASSERT_EQ(host.application.begun.size(), 1u);
        EXPECT_EQ(host.application.begun[0].sheet, ui.editSheet.get());
        EXPECT_EQ(host.application.begun[0].parent, host.application.main.get());
        EXPECT_TRUE(host.application.ended.empty());
        cancel();
        EXPECT_TRUE(host.application.ended.empty()) << "the sheet ends when its loop has";
    });
    EXPECT_EQ(ui.progressMain->starts, spins + 1);
    EXPECT_EQ(host.application.ended, std::vector<Window*>{ui.editSheet.get()});
    EXPECT_FALSE(ui.editSheet->visible);
}

TEST_F(EditSheetTest, ModulesAreToldInOrder) {
    sleep->reactsToCheckboxes = true;
    configurator->setScheduleArray(Value(Array{complete()}));
    sleep->calls.clear();
    wakeUp->calls.clear();
    const Calls probe = {"wake on", "startup off", "wake off", "startup on"};
    const Calls pushed = {"startup on", "wake off", "checkboxAction"};
    Calls expected = {"setParameters", "setParameters", "fillSetupInterface", "fillSetupInterface"};
    const auto expect = [&expected](const Calls& calls) {
        expected.insert(expected.end(), calls.begin(), calls.end());
    };
    expect(probe);
    expect(pushed);
    expect(pushed);
    edit(0, [&] {
        EXPECT_EQ(sleep->calls, expected);
        EXPECT_EQ(wakeUp->calls, Calls{"setParameters"});
        sleep->calls.clear();
        save();
    });
    EXPECT_EQ(sleep->calls, (Calls{"fillParameters", "wake off", "startup on", "setParameters none"}));
    EXPECT_EQ(wakeUp->calls, (Calls{"setParameters", "setParameters none"}));

    wakeUp->calls.clear();
    add([&] {
        // A new Schedule has the module's own defaults, not the parameters it was made with.
        EXPECT_EQ(Calls(wakeUp->calls.begin(), wakeUp->calls.begin() + 3),
                  (Calls{"setParameters", "fillSetupInterface", "fillSetupInterface"}));
        wakeUp->calls.clear();
        ui.popUpType->pick("WakeUp");
        EXPECT_EQ(Calls(wakeUp->calls.begin(), wakeUp->calls.begin() + 3),
                  (Calls{"fillSetupInterface", "wake off", "startup off"}));
        cancel();
    });
}

TEST_F(EditSheetTest, SaveReplacesTheEditedScheduleAndKeepsItsOtherKeys) {
    configurator->setScheduleArray(Value(Array{tagged("a"), complete(), tagged("c")}));
    const Value before = entry(1);
    // A save closes the sheet, reloads and posts, and only then forgets what it was.
    std::string order;
    ui.table->onReload = [&] { order += host.application.stops == 1 ? "closed reloaded " : "reloaded "; };
    host.defaultCenter.addObserver(kMOLConfiguratorHasBeenEditedNotification, [&](const Notification&) {
        order += configurator->isEditing() ? "posted" : "posted too late";
    });
    edit(1, [&] {
        ui.days[1]->click();
        ui.wakeUpEdit->click();
        save();
        EXPECT_EQ(order, "closed reloaded posted");
        EXPECT_EQ(configurator->scheduleArray().size(), 3u);
        EXPECT_FALSE(configurator->isEditing() || configurator->isAdding());
    });
    Value expected = before.with("Is Enabled", 1).with("Action Hour", 23).with("Action Minute", 5);
    for (const auto day : schedule_keys::kActiveOnDays) expected = expected.with(day, 1);
    expected = expected.with("Active On Tuesday", 0)
                   .with("Action Parameters", Dictionary{{"startup", true}, {"wake", true}, {"n", 4}});
    EXPECT_EQ(entry(1), expected);
    EXPECT_EQ(before, complete());
    EXPECT_EQ(entry(0), tagged("a"));
    EXPECT_EQ(entry(2), tagged("c"));
    EXPECT_EQ(posted(), 1u);
}

TEST_F(EditSheetTest, AddAppendsAFreshSchedule) {
    configurator->setScheduleArray(listOf("ab"));
    add([&] {
        EXPECT_TRUE(configurator->isAdding() && !configurator->isEditing());
        EXPECT_EQ(configurator->scheduleArray().size(), 2u);
        EXPECT_EQ(ui.popUpType->titleOfSelectedItem(), "WakeUp");
        EXPECT_EQ(ui.timeControl->dateValue().hour, 7);
        EXPECT_EQ(days(), "1111111");
        for (const auto& day : ui.days) day->click();
        save();
    });
    ASSERT_EQ(configurator->scheduleArray().size(), 3u);
    Dictionary expected{{"Is Enabled", 1},
                        {"Action Type", schedule_keys::kWakeUpType},
                        {"Action Hour", 7},
                        {"Action Minute", 0},
                        {"Action Parameters", wakeUp->defaults}};
    for (const auto day : schedule_keys::kActiveOnDays) expected.set(day, 0);
    EXPECT_EQ(entry(2), Value(expected));
    EXPECT_EQ(posted(), 1u);
}

TEST_F(EditSheetTest, AbsentParametersLeaveWhatWasThere) {
    sleep->wakeUpChangeable = sleep->startupChangeable = false;
    sleep->defaults = Value();
    configurator->setScheduleArray(Value(Array{complete().with("Action Parameters", Value())}));
    edit(0, [&] { save(); });
    EXPECT_TRUE(entry(0)["Action Parameters"].isAbsent());

    // A fresh Schedule of the wake-up type that is saved as a module without parameters keeps the former's.
    add([&] {
        ui.popUpType->pick("Sleep");
        save();
    });
    EXPECT_EQ(entry(1)["Action Type"].text(), schedule_keys::kSleepType);
    EXPECT_EQ(entry(1)["Action Parameters"], wakeUp->defaults);
}

TEST_F(EditSheetTest, SaveWithoutAModePostsAndChangesNothing) {
    configurator->setScheduleArray(listOf("ab"));
    ui.table->selectRows({0});
    configurator->saveSchedule(nullptr);
    EXPECT_EQ(tags(), "ab");
    EXPECT_EQ(Value(configurator->scheduleArray()), listOf("ab"));
    EXPECT_EQ(posted(), 1u);
    EXPECT_EQ(host.application.stops, 1);
}

TEST_F(EditSheetTest, CancelChangesNothing) {
    const Value list(Array{complete(), complete(schedule_keys::kWakeUpType)});
    configurator->setScheduleArray(list);
    const auto spoil = [&] {
        ui.days[0]->click();
        ui.popUpType->pick("WakeUp");
        ui.timeControl->setDateValue({2024, 3, 15, 1, 1, 0});
        cancel();
    };
    edit(0, spoil);
    EXPECT_TRUE(configurator->isEditing());
    add(spoil);
    EXPECT_TRUE(configurator->isAdding() && !configurator->isEditing());
    EXPECT_EQ(Value(configurator->scheduleArray()), list);
    EXPECT_EQ(posted(), 0u);
    // What was cancelled says nothing about the next sheet.
    edit(1, [&] {
        EXPECT_TRUE(configurator->isEditing() && !configurator->isAdding());
        save();
    });
    EXPECT_EQ(configurator->scheduleArray().size(), 2u);
    EXPECT_EQ(entry(0), list.array()[0]);
}

TEST_F(EditSheetTest, SelectAllFollowsTheDays) {
    configurator->setScheduleArray(Value(Array{complete()}));
    edit(0, [&] {
        EXPECT_FALSE(ui.selectAllButton->isEnabled());
        for (const auto& day : ui.days) {
            day->click();
            EXPECT_TRUE(ui.selectAllButton->isEnabled());
            EXPECT_TRUE(ui.selectAllButton->click());
            EXPECT_EQ(days(), "1111111");
            EXPECT_FALSE(ui.selectAllButton->isEnabled());
        }
        ui.popUpType->selectItemAtIndex(-1);
        const auto image = ui.actionStateEdit->image();
        sleep->calls.clear();
        ui.days[6]->click();
        EXPECT_TRUE(ui.selectAllButton->isEnabled());
        EXPECT_TRUE(sleep->calls.empty());
        EXPECT_EQ(ui.actionStateEdit->image(), image);
        cancel();
    });
}

TEST_F(EditSheetTest, ProbesWhichFlagsAModuleLeavesToTheUser) {
    configurator->setScheduleArray(Value(Array{complete()}));
    for (const bool startup : {false, true}) {
        for (const bool wake : {false, true}) {
            sleep->startupChangeable = startup;
            sleep->wakeUpChangeable = wake;
            edit(0, [&] {
                EXPECT_EQ(ui.startupEdit->isEnabled(), startup);
                EXPECT_EQ(ui.wakeUpEdit->isEnabled(), wake);
                EXPECT_TRUE(sleep->needsStartup() && !sleep->needsWakeUp());
                EXPECT_TRUE(ui.startupEdit->state() == 1 && ui.wakeUpEdit->state() == 0);
                cancel();
            });
        }
    }
}

TEST_F(EditSheetTest, PickingATypeAppliesItsDefaults) {
    wakeUp->wakeUpByDefault = true;
    sleep->startupByDefault = true;
    configurator->setScheduleArray(Value(Array{complete()}));
    edit(0, [&] {
        EXPECT_EQ(ui.startupEdit->state(), 1);
        ui.popUpType->pick("WakeUp");
        EXPECT_TRUE(ui.startupEdit->state() == 0 && ui.wakeUpEdit->state() == 1);
        EXPECT_EQ(ui.actionStateEdit->imageName(), "WakeUpDot.png");
        ui.popUpType->pick("Sleep");
        EXPECT_TRUE(ui.startupEdit->state() == 1 && ui.wakeUpEdit->state() == 0);
        EXPECT_EQ(sleep->current["n"].intValue(), 4) << "the parameters set at opening stay";
        ui.popUpType->pick("WakeUp");
        save();
    });
    EXPECT_EQ(entry(0)["Action Type"].text(), schedule_keys::kWakeUpType);
    EXPECT_EQ(entry(0)["Action Parameters"], Value(Dictionary{{"startup", false}, {"wake", true}}));
}

TEST_F(EditSheetTest, DotImageFollowsTheModuleNotTheBoxes) {
    configurator->setScheduleArray(Value(Array{complete()}));
    edit(0, [&] {
        EXPECT_EQ(ui.actionStateEdit->imageName(), "StartupDot.png");
        ui.wakeUpEdit->click();
        EXPECT_EQ(ui.actionStateEdit->imageName(), "MixedDot.png");
        ui.startupEdit->click();
        EXPECT_EQ(ui.actionStateEdit->imageName(), "WakeUpDot.png");
        ui.wakeUpEdit->click();
        EXPECT_EQ(ui.actionStateEdit->imageName(), "NoneDot.png");
        sleep->reactsToCheckboxes = true;
        sleep->onCheckbox = [](FakeModule& module) { module.setNeedsWakeUp(true); };
        ui.startupEdit->click();
        EXPECT_EQ(ui.actionStateEdit->imageName(), "MixedDot.png");
        EXPECT_EQ(ui.wakeUpEdit->state(), 0);
        cancel();
    });
}

TEST_F(EditSheetTest, ShowsOneOptionsViewAndTakesItsHeight) {
    host.application.main->setFrame({100, 50, 800, 700});
    sleep->view = std::make_shared<headless::View>();
    sleep->view->setFrame({5, 6, 300, 120});
    configurator->setScheduleArray(Value(Array{complete()}));
    const auto shows = [&](const std::shared_ptr<View>& view, double height) {
        EXPECT_EQ(ui.editCustomView->subviews(), std::vector<std::shared_ptr<View>>{view});
        EXPECT_EQ(ui.editSheet->frame(), (Rect{200, 750 - 22 - height, 500, height}));
    };
    edit(0, [&] {
        shows(sleep->view, 300 + 120 - 22);
        EXPECT_EQ(sleep->view->frame(), (Rect{5, 6, 300, 120}));
        ui.popUpType->pick("WakeUp");
        shows(ui.blankOptionsView, 300 + 40 - 22);
        ui.popUpType->pick("Sleep");
        shows(sleep->view, 300 + 120 - 22);
        configurator->outlets.blankOptionsView = nullptr;
        ui.popUpType->pick("WakeUp");
        EXPECT_TRUE(ui.editCustomView->subviews().empty());
        EXPECT_EQ(ui.editSheet->frame().height, 300 - 22);
        cancel();
    });
}

TEST_F(EditSheetTest, MissingModulesAndControlsAreSurvived) {
    // The default type of a new Schedule is not loaded: the pop-up keeps what it shows.
    host.bundles.directories.clear();
    const auto other = install("other", "Other");
    other->base = false;
    configurator->loadModules();
    configurator->setScheduleArray(Value(Array{tagged("o", "other")}));
    ui.popUpType->selectItemWithTitle("Other");
    add([&] {
        EXPECT_EQ(ui.popUpType->titleOfSelectedItem(), "Other");
        EXPECT_EQ(ui.timeControl->dateValue().hour, 23);
        save();
    });
    EXPECT_EQ(entry(1)["Action Type"].text(), "other");

    // Nothing, or a separator, is chosen: no module is asked and the Schedule keeps its type.
    for (const int item : {-1, 0}) {
        ui.table->selectRows({0});
        host.application.duringNextModal([&] {
            ui.popUpType->selectItemAtIndex(item);
            ui.popUpType->act();
            EXPECT_FALSE(ui.startupEdit->isEnabled() || ui.wakeUpEdit->isEnabled());
            save();
        });
        ui.editButton->act();
        EXPECT_EQ(entry(0)["Action Type"].text(), "other");
        EXPECT_EQ(entry(0)["Is Enabled"], Value(1));
    }

    configurator->outlets.editSheet = nullptr;
    configurator->addSchedule(nullptr);
}

}  // namespace
}  // namespace quorel::test
