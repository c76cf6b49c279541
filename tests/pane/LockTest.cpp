#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

class LockTest : public PaneTest {
protected:
    const std::string kMarkerKey = "NSDocumentBooo";
    Value marker() const { return host.standardUserDefaults.objectForKey(kMarkerKey); }
    std::vector<AuthorizationFlags> askedFlags() const {
        std::vector<AuthorizationFlags> flags;
        for (const auto& asked : host.authorization.asked) flags.push_back(asked.flags);
        return flags;
    }
};

TEST_F(LockTest, EveryControlFollowsTheLock) {
    host.authorization.granted = true;
    for (const bool file : {false, true}) {
        for (const bool check : {false, true}) {
            const bool first = check;  // unlocked when the pane opens
            host.standardUserDefaults.values.clear();
            if (first) unlockBeforehand();
            store(file ? Value(storedDefaults()).with("Check Updates", check) : Value());
            ui.networkAdminCheck->setHidden(false);
            ui.networkAdminCheck->setEnabled(true);
            ui.authButton->setState(!first);
            open();
            const bool checks = check || !file;
            bool wasUnlocked = false;
            for (const bool unlocked : {first, !first, first, !first}) {
                if (unlocked != pane->prefsAreUnlocked()) ui.authButton->click();
                SCOPED_TRACE(testing::Message() << "file " << file << " check " << check << " unlocked " << unlocked);
                EXPECT_EQ(pane->prefsAreUnlocked(), unlocked);
                EXPECT_EQ(ui.authButton->state(), unlocked ? kStateOn : kStateOff);
                EXPECT_EQ(ui.lockDescLabel->stringValue(), unlocked ? "[Cadenas ouvert]" : "[Cadenas ferme]");
                EXPECT_EQ(pane->configurator()->isLocked(), !unlocked);
                EXPECT_EQ(configuratorUi.addButton->isEnabled(), unlocked);
                EXPECT_EQ(ui.menuCheck->isEnabled(), unlocked);
                EXPECT_EQ(ui.checkUpdateAtStartup->isEnabled(), unlocked);
                EXPECT_EQ(ui.popUpUpdate->isEnabled(), unlocked && checks);
                EXPECT_FALSE(ui.networkAdminCheck->isEnabled());
                wasUnlocked |= unlocked;  // locking leaves hidden what unlocking hid
                EXPECT_EQ(ui.networkAdminCheck->isHidden(), file || wasUnlocked);
            }
        }
    }
}

TEST_F(LockTest, TheLabelIsOnScreenBeforeTheDialog) {
    open();
    std::vector<std::string> seen;
    ui.lockDescLabel->onDisplay = [&] { seen.push_back("drawn " + ui.lockDescLabel->stringValue()); };
    host.authorization.duringDialog = [&] {
        seen.push_back("dialog " + ui.lockDescLabel->stringValue());
        EXPECT_TRUE(marker().isAbsent());
    };
    for (const bool granted : {false, true}) {
        host.authorization.grantedWhenAsked = granted;
        ui.authButton->click();
        EXPECT_EQ(seen, (std::vector<std::string>{"drawn [Authentification en cours]",
                                                  "dialog [Authentification en cours]"}));
        EXPECT_EQ(ui.lockDescLabel->stringValue(), granted ? "[Cadenas ouvert]" : "[Cadenas ferme]");
        seen.clear();
    }
    ui.authButton->click();  // locking says nothing of the kind
    EXPECT_TRUE(seen.empty());
}

TEST_F(LockTest, OnlyTheExactMarkerUnlocks) {
    create();
    const std::string exact = "<rtwzKa38Pmxq 42>";
    const struct {
        Value marker;
        bool unlocked;
    } cases[] = {
        {exact, true},
        {Value(), false},
        {exact + " ", false},
        {Data(exact.begin(), exact.end()), false},
    };
    for (const auto& [value, unlocked] : cases) {
        host.standardUserDefaults.values[kMarkerKey] = value;
        EXPECT_EQ(pane->prefsAreUnlocked(), unlocked);
        pane->didSelect();
        EXPECT_EQ(configuratorUi.addButton->isEnabled(), unlocked);
    }
    EXPECT_EQ(host.authorization.created, 0);
}

TEST_F(LockTest, WhatTheAuthorityIsAsked) {
    struct {
        bool reachable, granted, grantedWhenAsked;
        bool unlocked;
        std::vector<AuthorizationFlags> asked;
    } const cases[] = {
        {false, true, true, false, {3}},
        {true, true, false, true, {0}},
        {true, false, true, true, {0, 3}},
        {true, false, false, false, {0, 3}},
    };
    for (const auto& [reachable, granted, grantedWhenAsked, unlocked, asked] : cases) {
        host.standardUserDefaults = {};
        host.authorization = {};
        host.authorization.reachable = reachable;
        host.authorization.granted = granted;
        host.authorization.grantedWhenAsked = grantedWhenAsked;
        open();
        EXPECT_EQ(host.authorization.created, 0);
        ui.authButton->click();
        EXPECT_EQ(pane->prefsAreUnlocked(), unlocked);
        EXPECT_EQ(host.authorization.created, 1);
        EXPECT_EQ(host.authorization.createFlags, 0u);
        EXPECT_EQ(askedFlags(), asked);
        for (const auto& [rights, flags] : host.authorization.asked) {
            ASSERT_EQ(rights.size(), 1u);
            EXPECT_EQ(rights[0].name, "system.privilege.admin");
            EXPECT_TRUE(rights[0].value.empty());
            EXPECT_EQ(rights[0].flags, 0u);
        }
        // What a later launch finds.
        EXPECT_EQ(host.standardUserDefaults.onDisk.contains(kMarkerKey), unlocked);
        EXPECT_EQ(configuratorUi.addButton->isEnabled(), unlocked);
    }
    EXPECT_TRUE(host.application.alerts.empty());
    EXPECT_EQ(host.application.beeps, 0);
}

TEST_F(LockTest, LockingKeepsTheReference) {
    host.authorization.grantedWhenAsked = true;
    open();
    ui.authButton->click();
    ui.authButton->click();
    EXPECT_TRUE(marker().isAbsent());
    EXPECT_FALSE(host.standardUserDefaults.onDisk.contains(kMarkerKey));
    host.authorization.duringDialog = [] { ADD_FAILURE() << "earlier authentication still counts"; };
    ui.authButton->click();
    EXPECT_TRUE(pane->prefsAreUnlocked());
    EXPECT_EQ(host.authorization.created, 1);
    EXPECT_EQ(host.authorization.freed, 0);

    pane->deAuthorize();
    EXPECT_EQ(host.authorization.freed, 1);
    EXPECT_EQ(host.authorization.freeFlags, 8u);
    EXPECT_TRUE(pane->isAuthorized());
    EXPECT_EQ(host.authorization.created, 2);
}

TEST_F(LockTest, UnlockingAgainAsksNobodyAndWritesTheMarkerAgain) {
    host.authorization.granted = true;
    unlockBeforehand();
    open();
    EXPECT_TRUE(pane->unlockPrefs());
    EXPECT_TRUE(host.authorization.asked.empty());
    EXPECT_TRUE(host.standardUserDefaults.onDisk.contains(kMarkerKey));

    // The marker counts, not what the button shows.
    host.standardUserDefaults.values.clear();
    ui.authButton->click();
    EXPECT_TRUE(pane->prefsAreUnlocked());
    EXPECT_EQ(ui.authButton->state(), kStateOn);
}

}  // namespace
}  // namespace quorel::test
