#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

class UpdateCheckTest : public PaneTest {
protected:
    /// "title / message / buttons" of each alert, or nothing.
    std::vector<std::string> alerts() const {
        std::vector<std::string> texts;
        for (const auto& alert : host.application.alerts) {
            texts.push_back(alert.title + " / " + alert.message + " / " + alert.defaultButton +
                            (alert.alternateButton ? " " + *alert.alternateButton : ""));
        }
        return texts;
    }
    static std::string newer(const std::string& version) {
        return "[Nouvelle version dispo] / [Telecharger la version " + version + " ?] / OK [Annuler]";
    }
    const std::string kUpToDate = "[Logiciel a jour] / [Version OK] / OK";
    const std::string kFailed = "[Verification impossible] / [Acces au site impossible] / OK";
};

TEST_F(UpdateCheckTest, EveryOutcome) {
    constexpr bool kSent = true, kNobody = false;
    struct {
        bool sender, agent, reachable;
        std::optional<std::string> latest;
        bool betweenCycles;
        std::optional<std::string> alert;
        bool waitsForMain;  ///< said while the check itself waits
    } const cases[] = {
        {kSent, true, true, "2.5", true, {}, false},
        {kNobody, true, false, {}, false, {}, false},
        {kSent, false, false, "2.5", true, kFailed, false},
        {kSent, false, false, {}, false, kFailed, false},
        {kNobody, false, false, "2.5", true, {}, false},
        {kSent, false, true, {}, true, kUpToDate, true},
        {kNobody, false, true, {}, true, kUpToDate, true},
        {kSent, false, true, "2.5", true, newer("2.5"), false},
        {kNobody, false, true, "2 %@ 5%%", false, newer("2 %@ 5%%"), false},
        {kSent, false, true, "", true, newer(""), false},
        {kSent, false, true, {}, false, newer("(null)"), false},
    };
    int row = 0;
    for (const auto& [sender, agent, reachable, latest, betweenCycles, alert, waitsForMain] : cases) {
        SCOPED_TRACE(row++);
        create();  // no cycle has ended yet
        if (betweenCycles) pane->didSelect();
        host.dispatch.run();
        host.application.alerts.clear();
        center.agentPings.clear();
        center.toAgent.clear();
        checker.fetches = 0;
        center.agentAlive = agent;
        checker.reachable = reachable;
        checker.latest = latest;
        pane->checkUpdates(sender ? ui.checkUpdatesButton : nullptr);
        EXPECT_TRUE(center.agentPings.empty()) << "the main thread does not wait";
        host.dispatch.runBackground();
        EXPECT_EQ(center.agentPings, std::vector<unsigned>{501u});
        EXPECT_EQ(checker.fetches, agent ? 0 : 1);
        EXPECT_EQ(alerts().size(), waitsForMain ? 1u : 0u);
        host.dispatch.run();
        EXPECT_EQ(alerts(), alert ? std::vector<std::string>{*alert} : std::vector<std::string>());
        ASSERT_EQ(center.toAgent.size(), agent ? 1u : 0u);
        if (agent) {
            const auto& [notification, user] = center.toAgent[0];
            EXPECT_EQ(notification.name, "UserAgentMustCheckUpdates");
            EXPECT_EQ(notification.object, "com.quorel.UserAgent");
            EXPECT_TRUE(notification.userInfo.isAbsent());
            EXPECT_EQ(user, 501u);
        }
    }
    EXPECT_EQ(host.dispatch.labels.back(), "-[VXPrefPaneController checkUpdates:]");
    EXPECT_TRUE(center.toDaemon.empty());
}

TEST_F(UpdateCheckTest, UpToDateIsSaidOnlyBetweenCycles) {
    open();
    int ping = 0;
    // A click into each ping of the second cycle.
    center.onPing = [&] {
        if (++ping != 1 && ping != 3) return;
        pane->checkUpdates(ui.checkUpdatesButton);
        host.dispatch.runBackground();
    };
    host.dispatch.advance(10s);
    EXPECT_EQ(alerts(), (std::vector<std::string>{newer("(null)"), newer("(null)")}));
    ping = 100;
    ui.checkUpdatesButton->click();
    host.dispatch.run();
    EXPECT_EQ(alerts().back(), kUpToDate);
    EXPECT_EQ(host.sharedWorkspace.opened.size(), 2u) << "up to date offers no page";
    bundle->onLookup = [&](std::string_view key) {
        if (key != "Quotidien") return;
        pane->checkUpdates(nullptr);
        host.dispatch.runBackground();
    };
    pane->didSelect();  // not from its very start until its first cycle has ended
    host.dispatch.run();
    EXPECT_EQ(alerts().back(), newer("(null)"));
}

TEST_F(UpdateCheckTest, OnlyOKOpensThePage) {
    create();
    checker.latest = "2.5";
    for (const int answer : {kAlertDefaultReturn, kAlertAlternateReturn, -1, 2}) {
        host.sharedWorkspace.opened.clear();
        host.application.alertAnswer = answer;
        checker.url = "https://example.invalid/before";
        ui.checkUpdatesButton->click();
        host.dispatch.runBackground();
        checker.url = "https://example.invalid/now";  // asked for when it is needed, and before the question
        host.application.duringAlert = [this] { checker.url = "https://example.invalid/after"; };
        host.dispatch.run();
        EXPECT_EQ(host.sharedWorkspace.opened,
                  answer == 1 ? std::vector<std::string>{"https://example.invalid/now"} : std::vector<std::string>());
    }
}

TEST_F(UpdateCheckTest, HoldsPaneAndSenderUntilItHasEnded) {
    create();
    auto sender = std::make_shared<headless::Button>();
    const std::weak_ptr<headless::Button> watchedSender = sender;
    const std::weak_ptr<VXPrefPaneController> watchedPane = pane;
    pane->checkUpdates(std::move(sender));
    pane = nullptr;
    EXPECT_FALSE(watchedSender.expired());
    checker.reachable = false;
    host.dispatch.run();
    EXPECT_EQ(alerts(), std::vector<std::string>{kFailed});
    EXPECT_TRUE(watchedSender.expired());
    EXPECT_TRUE(watchedPane.expired());
}

}  // namespace
}  // namespace quorel::test
