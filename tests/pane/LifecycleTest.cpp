#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

using LifecycleTest = PaneTest;

TEST_F(LifecycleTest, NothingIsMadeOfABundleThatIsNoPane) {
    for (const auto& other : {std::shared_ptr<headless::Bundle>(), std::make_shared<headless::Bundle>("/other")}) {
        EXPECT_FALSE(VXPrefPaneController::initWithBundle(other, configuratorUi, host.platform));
        EXPECT_EQ(center.serverConnections, 0);
        EXPECT_FALSE(configuratorUi.table->dataSource);
    }
}

TEST_F(LifecycleTest, ConstructionAnnouncesThePaneAndReadsNothing) {
    struct : FakeCommunicationCenter {
        void createServerConnection() override {
            canAnswer = observer.lock() && observer.lock()->pong();
            configuratorLoaded = table->dataSource != nullptr;
            FakeCommunicationCenter::createServerConnection();
        }
        const headless::TableView* table = nullptr;
        bool canAnswer = false;
        bool configuratorLoaded = false;
    } channel;
    channel.table = configuratorUi.table.get();
    create();
    EXPECT_EQ(channel.serverConnections, 1);
    EXPECT_TRUE(channel.canAnswer);
    EXPECT_FALSE(channel.configuratorLoaded);
    EXPECT_TRUE(pane->configurator());
    EXPECT_EQ(pane->communicationCenter(), &channel);
    EXPECT_EQ(host.files.reads, 0);
    EXPECT_EQ(channel.daemonPings, 0);
    EXPECT_TRUE(host.dispatch.labels.empty());
    EXPECT_EQ(host.authorization.created, 0);
}

TEST_F(LifecycleTest, EmbedsTheConfigurator) {
    ui.configView->addSubview(std::make_shared<headless::View>());
    create();
    pane->awakeFromNib();  // whatever was there goes, our own view too
    ASSERT_EQ(ui.configView->subviews().size(), 1u);
    EXPECT_EQ(ui.configView->subviews()[0], configuratorUi.mainView);
    EXPECT_EQ(configuratorUi.mainView->frame(), (Rect{0, 0, 530, 250}));
    ASSERT_EQ(ui.configView->pinned.size(), 8u);
    std::size_t next = 4;
    for (const Anchor anchor : {Anchor::Leading, Anchor::Trailing, Anchor::Top, Anchor::Bottom}) {
        EXPECT_EQ(ui.configView->pinned[next++], std::pair(anchor, static_cast<View*>(configuratorUi.mainView.get())));
    }
    EXPECT_EQ(lights(), "--");
    EXPECT_EQ(center.daemonPings, 0);

    pane->outlets.configView = nullptr;
    pane->awakeFromNib();
    EXPECT_EQ(configuratorUi.mainView->frame(), Rect{});
}

TEST_F(LifecycleTest, SelectingAgainStartsOver) {
    unlockBeforehand();
    create();
    for (int selection = 0; selection < 3; ++selection) {
        store(storedDefaults());
        pane->didSelect();
        EXPECT_EQ(ui.popUpUpdate->items,
                  (std::vector<std::optional<std::string>>{"[Quotidien]", "[Hebdomadaire]", "[Mensuel]"}));
        EXPECT_EQ(ui.popUpUpdate->indexOfSelectedItem(), 1);
        EXPECT_EQ(tags(), "ab");
        EXPECT_FALSE(canApply());
        configuratorUi.table->selectRows({0});
        pane->configurator()->deleteSchedule(nullptr);
        EXPECT_EQ(tags(), "b");
    }
}

TEST_F(LifecycleTest, TheFirstPingsFindThePaneFilledAndLocked) {
    store(storedDefaults());
    center.daemonAlive = center.agentAlive = true;
    int pings = 0;
    center.onPing = [&] {
        ++pings;
        EXPECT_EQ(ui.popUpUpdate->numberOfItems(), 3);
        EXPECT_EQ(tags(), "ab");
        EXPECT_EQ(ui.lockDescLabel->stringValue(), "[Cadenas ferme]");
        EXPECT_FALSE(ui.menuCheck->isEnabled());
    };
    create();
    pane->didSelect();
    EXPECT_EQ(pings, 2);
    EXPECT_EQ(lights(), "--");  // the results come when the main thread is free again
    host.dispatch.run();
    EXPECT_EQ(lights(), "++");
}

TEST_F(LifecycleTest, WhatCountsAsAnEdit) {
    unlockBeforehand();
    store(storedDefaults());
    open();
    auto& table = *configuratorUi.table;
    const auto inSheet = [&](const auto& button) {
        host.application.duringNextModal([button] { button->click(); });
        table.doubleClickRow(0);
    };
    struct {
        const char* what;
        std::function<void()> act;
        bool counts;
    } const cases[] = {
        {"flag", [&] { table.clickCell(0, "Is Enabled"); }, true},
        {"day", [&] { table.clickCell(1, "Active On Sunday"); }, true},
        {"frequency", [&] { ui.popUpUpdate->pick("[Mensuel]"); }, true},
        {"check updates", [&] { ui.checkUpdateAtStartup->click(); }, true},
        {"menu bar", [&] { ui.menuCheck->click(); }, true},
        {"save the sheet", [&] { inSheet(configuratorUi.saveButton); }, true},
        {"delete", [&] { table.selectRows({0}), configuratorUi.deleteButton->click(); }, true},
        {"cancel the sheet", [&] { inSheet(configuratorUi.cancelButton); }, false},
        {"sort", [&] { table.clickHeader("Infos"); }, false},
        {"reorder", [&] { table.drag({1}, 0); }, false},
    };
    for (const auto& [what, act, counts] : cases) {
        pane->getPrefs();
        ASSERT_FALSE(canApply());
        act();
        EXPECT_EQ(canApply(), counts) << what;
    }
}

TEST_F(LifecycleTest, WhatChangesApplyAndRevert) {
    enum Outcome { kEnabled, kDisabled, kUnchanged };
    unlockBeforehand();
    open();
    struct {
        const char* event;
        bool file, daemon;
        std::function<void()> act;
        Outcome outcome;
    } const cases[] = {
        {"revert", true, true, [&] { pane->revert(nullptr); }, kDisabled},
        {"revert to defaults", false, true, [&] { pane->revert(nullptr); }, kUnchanged},
        {"apply", true, true, [&] { pane->applyNow(nullptr); }, kDisabled},
        {"apply without daemon", true, false, [&] { pane->applyNow(nullptr); }, kUnchanged},
        {"first apply", false, true, [&] { pane->applyNow(nullptr); }, kUnchanged},
        {"leave", true, true, [&] { pane->willUnselect(); }, kDisabled},
        {"leave without daemon", true, false, [&] { pane->willUnselect(); }, kUnchanged},
        {"lock", true, true, [&] { pane->prefsLocked(); }, kDisabled},
        {"unlock", true, true, [&] { pane->prefsUnlocked(); }, kUnchanged},
        {"option by hand", true, true, [&] { pane->checkboxAction(ui.menuCheck.get()); }, kEnabled},
        {"option by code", true, true, [&] { pane->checkboxAction(nullptr); }, kUnchanged},
    };
    for (const auto& [event, file, daemon, act, outcome] : cases) {
        for (const bool before : {false, true}) {
            store(file ? Value(storedDefaults()) : Value());
            center.daemonAlive = daemon;
            setCanApply(before);
            act();
            EXPECT_EQ(canApply(), outcome == kUnchanged ? before : outcome == kEnabled) << event;
        }
    }
}

TEST_F(LifecycleTest, RevertBringsBackTheFileAndTheFrequencyFollowsTheCheck) {
    unlockBeforehand();
    store(storedDefaults());
    center.daemonAlive = true;
    open();
    for (const bool on : {false, true, false}) {
        ui.checkUpdateAtStartup->click();
        EXPECT_EQ(ui.popUpUpdate->isEnabled(), on);
    }
    ui.menuCheck->click();
    configuratorUi.table->clickCell(0, "Is Enabled");
    ui.revertButton->click();
    EXPECT_EQ(ui.checkUpdateAtStartup->state(), kStateOn);
    EXPECT_FALSE(ui.popUpUpdate->isEnabled()) << "reading does not reach that far";
    EXPECT_EQ(ui.menuCheck->state(), kStateOn);
    EXPECT_EQ(pane->configurator()->scheduleArray().at(0)["Is Enabled"], Value(1));
    EXPECT_TRUE(center.toDaemon.empty());
}

TEST_F(LifecycleTest, LeavingAlwaysSaves) {
    for (int choice = 0; choice < 8; ++choice) {
        const bool unlocked = choice & 1, edited = choice & 2, alive = choice & 4;
        host.standardUserDefaults.values.clear();
        if (unlocked) unlockBeforehand();
        store(storedDefaults());
        open();
        if (edited) ui.menuCheck->setState(kStateOff);
        const int reads = host.files.reads;
        setCanApply(edited);
        center.daemonAlive = alive;
        center.toDaemon.clear();
        pane->willUnselect();
        EXPECT_EQ(host.files.reads - reads, alive ? 1 : 0);
        ASSERT_EQ(center.toDaemon.size(), alive ? 1u : 0u);
        if (alive) {
            EXPECT_EQ(center.toDaemon[0].userInfo["Show In Menu Bar"], Value(edited ? 0 : 1));
        }
        EXPECT_EQ(ui.menuCheck->state(), edited && !alive ? kStateOff : kStateOn);
    }
    EXPECT_TRUE(host.application.alerts.empty());
    EXPECT_EQ(host.application.beeps, 0);
}

TEST_F(LifecycleTest, GoesWhenItWasNeverSelected) {
    create();
    const std::weak_ptr<VXPrefPaneController> watched = pane;
    pane = nullptr;
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(center.observer.expired());
    host.defaultCenter.postNotification({std::string(kMOLConfiguratorHasBeenEditedNotification), {}, {}});
}

TEST_F(LifecycleTest, AnEmbeddingHostNeverHearsARefusal) {
    create();
    const auto view = std::make_shared<headless::View>();
    VXPrefPaneControllerProtocol& embedded = *pane;
    embedded.setMainView(view);
    EXPECT_EQ(embedded.mainView(), view);
    embedded.setShouldUnselect(PreferencePane::UnselectCancel);
    EXPECT_EQ(embedded.shouldUnselect(), PreferencePane::UnselectNow);
}

TEST_F(LifecycleTest, DoesWithoutConfiguratorAndKit) {
    configuratorUi.loadable = false;
    VXCommunicationCenter::setSharedInstance(nullptr);
    VXUpdateChecker::setSharedInstance(nullptr);
    store(storedDefaults());
    open();
    host.authorization.granted = true;
    ui.authButton->click();
    ui.menuCheck->click();
    ui.applyButton->click();
    pane->willUnselect();
    EXPECT_TRUE(canApply());
    EXPECT_EQ(ui.menuCheck->state(), kStateOff);
    EXPECT_EQ(lights(), "--");
    pane->checkUpdates(nullptr);
    host.dispatch.run();
    EXPECT_TRUE(host.application.alerts.empty());
    ui.checkUpdatesButton->click();
    host.dispatch.run();
    EXPECT_EQ(host.application.alerts.at(0).title, "[Verification impossible]");
}

}  // namespace
}  // namespace quorel::test
