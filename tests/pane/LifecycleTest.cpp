#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

using LifecycleTest = PaneTest;

TEST_F(LifecycleTest, NothingIsMadeOfABundleThatIsNoPane) {
    configuratorUi.loadable = false;
    EXPECT_FALSE(VXPrefPaneController::initWithBundle(bundle, configuratorUi, host.platform));
    EXPECT_TRUE(center.observer.expired());
    configuratorUi.loadable = true;
    center.serverConnections = 0;
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

// An edit in one pane of the process is heard by all, also by one whose interface file is not loaded, or does not load.
TEST_F(LifecycleTest, NothingComesOfAPaneThatHasNotAwoken) {
    create();
    center.daemonAlive = true;
    const auto second = VXPrefPaneController::initWithBundle(bundle, configuratorUi, host.platform);
    setCanApply(false);
    host.defaultCenter.postNotification({std::string(kMOLConfiguratorHasBeenEditedNotification), {}, {}});
    EXPECT_TRUE(canApply());
    second->about(nullptr);
    second->didSelect();
    second->willUnselect();
    host.authorization.granted = true;
    second->willEnd();
    EXPECT_TRUE(host.application.begun.empty());
    EXPECT_EQ(host.files.reads, 0);
    EXPECT_EQ(center.daemonPings, 0);
}

TEST_F(LifecycleTest, EmbedsTheConfigurator) {
    for (int view = 0; view < 3; ++view) ui.configView->addSubview(std::make_shared<headless::View>());
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
    center.daemonAlive = center.agentAlive = true;
    center.onPing = [&] {
        EXPECT_EQ(ui.popUpUpdate->numberOfItems(), 3);
        EXPECT_EQ(tags(), "ab");
        EXPECT_EQ(ui.lockDescLabel->stringValue(), "[Cadenas ferme]");
    };
    create();
    for (int selection = 1; selection <= 3; ++selection) {
        store(storedDefaults());
        pane->didSelect();
        EXPECT_EQ(center.daemonPings, selection);
        if (selection == 1) EXPECT_EQ(lights(), "--") << "results come when the main thread is free again";
        host.dispatch.run();
        EXPECT_EQ(lights(), "++");
        EXPECT_EQ(ui.popUpUpdate->items,
                  (std::vector<std::optional<std::string>>{"[Quotidien]", "[Hebdomadaire]", "[Mensuel]"}));
        EXPECT_EQ(ui.popUpUpdate->indexOfSelectedItem(), 1);
        EXPECT_EQ(tags(), "ab");
        EXPECT_FALSE(canApply());
        pane->configurator()->setScheduleArray(Value());
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
        {"edit", true, true,
         [&] {
             host.defaultCenter.postNotification({std::string(kMOLConfiguratorHasBeenEditedNotification), {}, {}});
         },
         kEnabled},
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
    for (const bool on : {false, true}) {
        ui.checkUpdateAtStartup->setState(on);
        pane->checkboxAction(nullptr);
        pane->revert(nullptr);
        EXPECT_EQ(ui.popUpUpdate->isEnabled(), on) << "reading does not reach that far";
    }
}

TEST_F(LifecycleTest, GoesWhenItWasNeverSelected) {
    create();
    const std::weak_ptr<VXPrefPaneController> watched = pane;
    pane = nullptr;
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(center.observer.expired());
    host.defaultCenter.postNotification({std::string(kMOLConfiguratorHasBeenEditedNotification), {}, {}});
}

TEST_F(LifecycleTest, DoesWithoutKit) {
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
