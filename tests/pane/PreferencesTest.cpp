#include <fstream>
#include <iterator>

#include "model/PropertyList.h"
#include "planning/PreferencesCheck.h"
#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

using PreferencesTest = PaneTest;

TEST_F(PreferencesTest, ReadsOptionsFromWhateverKindOfValue) {
    const std::int64_t big = std::int64_t{1} << 32;
    struct {
        Value value;
        bool check;
        int frequency;
        bool menu;
    } const cases[] = {{Value(), false, 0, false},  // absent
                       {0, false, 0, false},       {1, true, 1, true},          {2, true, 2, false},
                       {3, true, 0, false},        {1000, true, 0, false},      {-1, true, -1, false},
                       {big, false, 0, false},     {"2 weeks", true, 2, false}, {Array{1}, false, 0, false}};
    open();
    int row = 0;
    for (const auto& [value, check, frequency, menu] : cases) {
        store(Dictionary{
            {"Check Updates", value}, {"Check Updates Frequency", value}, {"Show In Menu Bar", value}, {"Other", 1}});
        ui.checkUpdateAtStartup->setState(!check);
        ui.popUpUpdate->selectItemAtIndex(frequency == 2 ? 1 : 2);
        ui.menuCheck->setState(!menu);
        pane->getPrefs();
        EXPECT_EQ(ui.checkUpdateAtStartup->state(), check) << row;
        EXPECT_EQ(ui.popUpUpdate->indexOfSelectedItem(), frequency) << row;
        EXPECT_EQ(ui.menuCheck->state(), menu) << row;
        ++row;
    }
    store(Dictionary{{"Check Updates Frequency", -5}});  // an item that no pop-up has
    ui.popUpUpdate->selectItemAtIndex(2);
    pane->getPrefs();
    EXPECT_EQ(ui.popUpUpdate->indexOfSelectedItem(), 2);
    store(Dictionary());  // a file that holds nothing is not a missing file
    pane->getPrefs();
    EXPECT_EQ(ui.menuCheck->state(), kStateOff);
    EXPECT_EQ(logged().size(), 1u);
}

TEST_F(PreferencesTest, WithoutAFileShowsDefaults) {
    open();
    EXPECT_FALSE(ui.networkAdminCheck->isHidden());
    ui.checkUpdateAtStartup->setState(kStateOff);
    ui.menuCheck->setState(kStateOff);
    ui.networkAdminCheck->setState(kStateOff);
    ui.popUpUpdate->selectItemAtIndex(2);
    pane->configurator()->setScheduleArray(Value(Array{schedule("a")}));
    logged().clear();
    pane->getPrefs();
    EXPECT_EQ(ui.checkUpdateAtStartup->state(), kStateOn);
    EXPECT_EQ(ui.popUpUpdate->indexOfSelectedItem(), 0);
    EXPECT_EQ(ui.menuCheck->state(), kStateOn);
    EXPECT_EQ(ui.networkAdminCheck->state(), kStateOn);
    const Array& list = pane->configurator()->scheduleArray();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["Action Type"].text(), schedule_keys::kSleepType);
    EXPECT_EQ(list[1]["Action Type"].text(), schedule_keys::kWakeUpType);
    EXPECT_EQ(logged(), std::vector<std::string>{"No preferences. Creating defaults..."});
    EXPECT_TRUE(host.application.alerts.empty());

    // What a file that was there has hidden, the defaults do not bring back.
    store(storedDefaults());
    pane->getPrefs();
    store({});
    pane->getPrefs();
    EXPECT_TRUE(ui.networkAdminCheck->isHidden());
    EXPECT_EQ(ui.networkAdminCheck->state(), kStateOn);
}

TEST_F(PreferencesTest, SendsExactlyWhatIsOnScreen) {
    open();
    center.daemonAlive = true;
    struct {
        int check, frequency, menu;
        std::string_view list;
    } const cases[] = {{1, 0, 1, "ab"}, {0, 2, 0, "b"}, {1, -1, 0, ""}, {0, 1, 1, "cba"}};
    for (const auto& [check, frequency, menu, list] : cases) {
        Array schedules;
        for (const char tag : list) schedules.push_back(schedule(std::string(1, tag)));
        // An extra key, and network administration switched on: neither survives.
        store(Dictionary{{"Check Updates", check},
                         {"Check Updates Frequency", frequency},
                         {"Show In Menu Bar", menu},
                         {"Enable Network Administration", 1},
                         {"Extra", "lost"},
                         {"Schedule Array", schedules}});
        ui.networkAdminCheck->setState(kStateOn);
        ui.networkAdminCheck->setHidden(false);
        pane->getPrefs();
        EXPECT_EQ(ui.networkAdminCheck->state(), kStateOff);
        EXPECT_TRUE(ui.networkAdminCheck->isHidden());
        ui.networkAdminCheck->setState(kStateOn);
        if (list.empty()) schedules = pane->configurator()->scheduleArray();  // seeded
        pane->applyNow(nullptr);
        const Notification& sent = center.toDaemon.back();
        EXPECT_EQ(sent.name, "DaemonMustReloadPrefs");
        EXPECT_EQ(sent.object, "com.quorel.Daemon");
        EXPECT_EQ(sent.userInfo, Value(Dictionary{{"Check Updates", check},
                                                  {"Check Updates Frequency", frequency},
                                                  {"Show In Menu Bar", menu},
                                                  {"Enable Network Administration", 0},
                                                  {"Prefs Version", 1},
                                                  {"Schedule Array", schedules}}));
    }
    EXPECT_TRUE(center.toAgent.empty());
}

TEST_F(PreferencesTest, WhatVersion1HasStoredIsSentAsItIsButForTheVersion) {
    std::ifstream file(TEST_FILES "/preferences-1.0.plist");
    const Value stored = decodePropertyList(std::string(std::istreambuf_iterator<char>(file), {}));
    store(stored);
    open();
    center.daemonAlive = true;
    pane->willUnselect();
    EXPECT_NE(center.toDaemon.at(0).userInfo, stored);
    EXPECT_TRUE(areSamePreferences(center.toDaemon.at(0).userInfo, stored));
    EXPECT_FALSE(areSamePreferences(stored.with("Check Updates", 0), stored));
}

// Whatever a face drops, adds or shows otherwise is in the base and in what is sent, and so no edit.
TEST_F(PreferencesTest, UntouchedIsSentAsItsOwnBase) {
    unlockBeforehand();
    open();
    center.daemonAlive = true;
    const Value odd = Value(storedDefaults()).with("Check Updates Frequency", 7).with("Show In Menu Bar", 5);
    const Value lists[] = {Array{schedule("a"), schedule("of nobody", "gone")}, Array{}, "no list"};
    for (const Value& file : {Value(), odd, odd.with("Schedule Array", lists[0]), odd.with("Schedule Array", lists[1]),
                              odd.with("Schedule Array", lists[2]).with("Extra", 1)}) {
        store(file);
        pane->didSelect();
        EXPECT_FALSE(pane->hasEdits());
        pane->willUnselect();
        const Value& base = center.bases.back();
        EXPECT_EQ(base["Nothing Stored"], file.isAbsent() ? Value(1) : Value());
        EXPECT_EQ(center.toDaemon.back().userInfo, base.with("Nothing Stored", Value()));
    }
}

TEST_F(PreferencesTest, AnEditIsWhatDiffersFromTheBase) {
    unlockBeforehand();
    store(storedDefaults());
    create();
    EXPECT_FALSE(pane->hasEdits()) << "nothing was read yet";
    pane->didSelect();
    const std::function<void()> edits[] = {
        [&] { ui.menuCheck->click(); }, [&] { ui.popUpUpdate->pick("[Mensuel]"); },
        [&] { configuratorUi.table->clickCell(0, "Is Enabled"); },
        [&] { configuratorUi.table->drag({1}, 0); },  // which posts nothing
    };
    for (const auto& edit : edits) {
        edit();
        EXPECT_TRUE(pane->hasEdits());
        pane->revert(nullptr);
        EXPECT_FALSE(pane->hasEdits());
    }
    ui.menuCheck->click();
    pane->applyNow(nullptr);
    EXPECT_TRUE(pane->hasEdits()) << "nobody has taken it";
    for (const bool granted : {false, true}) {
        host.authorization.granted = granted;
        const int pings = center.daemonPings;
        pane->willEnd();
        EXPECT_EQ(center.daemonPings - pings, granted) << "nobody is asked at the end";
    }
    ui.menuCheck->click();
    EXPECT_FALSE(pane->hasEdits()) << "put back";
    host.authorization.asked.clear();
    pane->willEnd();
    EXPECT_TRUE(host.authorization.asked.empty());

    // Another pane of the process has read later, and another file.
    center.daemonAlive = true;
    center.onDaemon = [this](const Notification& sent) { store(sent.userInfo); };
    const auto first = pane;
    const Value base = Value(storedDefaults()).with("Enable Network Administration", 0).with("Prefs Version", 1);
    store(base.with("Show In Menu Bar", 0));
    PaneInterface otherUi;
    ConfiguratorInterface otherConfiguratorUi;
    const auto second = VXPrefPaneController::initWithBundle(bundle, otherConfiguratorUi, host.platform);
    otherUi.load(*second);
    second->didSelect();
    otherUi.menuCheck->click();
    EXPECT_FALSE(first->hasEdits());
    second->applyNow(nullptr);
    EXPECT_FALSE(second->hasEdits());
    first->willUnselect();
    EXPECT_EQ(center.bases, (std::vector<Value>{base.with("Show In Menu Bar", 0), base}));
}

TEST_F(PreferencesTest, ReadsBackAtOnceWhetherTheDaemonHasStoredOrNot) {
    struct {
        const char* what;
        bool hadFile, stores;
        int menu;
        bool canApplyAfter;
    } const cases[] = {
        {"stored at once", true, true, kStateOff, false},
        {"still the old file", true, false, kStateOn, false},
        {"first save, stored at once", false, true, kStateOff, false},
        {"first save, still no file", false, false, kStateOn, true},
    };
    unlockBeforehand();
    for (const auto& [what, hadFile, stores, menu, canApplyAfter] : cases) {
        store(hadFile ? Value(storedDefaults()) : Value());
        center.daemonAlive = true;
        center.onDaemon = [&, storing = stores](const Notification& sent) {
            EXPECT_EQ(ui.menuCheck->state(), kStateOff);
            if (storing) store(sent.userInfo);
        };
        open();
        ui.menuCheck->setState(kStateOn);
        ui.menuCheck->click();
        ui.applyButton->click();
        EXPECT_EQ(ui.menuCheck->state(), menu) << what;
        EXPECT_EQ(canApply(), canApplyAfter) << what;
    }
}

}  // namespace
}  // namespace quorel::test
