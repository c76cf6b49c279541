#include <gtest/gtest.h>

#include <atomic>

#include "linux/pane/ThreadDispatch.h"
#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "pane/VXPrefPaneController.h"
#include "tests/support/FakeKit.h"
#include "tests/support/HeadlessNib.h"
#include "tests/support/MainQueue.h"

// The controller on real threads: the polling and the update checks as they run inside a host.

namespace quorel::test {
namespace {

/// Queues on threads, on which what is to come later never comes: a chain is one cycle, and may be begun again at once.
class FirstCycles : public Dispatch {
public:
    explicit FirstCycles(DispatchQueue& mainQueue) : _threads(mainQueue) {}
    std::shared_ptr<DispatchQueue> createQueue(std::string_view label) override {
        return std::make_shared<Queue>(_threads.createQueue(label));
    }
    DispatchQueue& mainQueue() override { return _threads.mainQueue(); }

private:
    struct Queue : DispatchQueue {
        explicit Queue(std::shared_ptr<DispatchQueue> queue) : real(std::move(queue)) {}
        void async(Block block) override { real->async(std::move(block)); }
        void sync(const Block& block) override { real->sync(block); }
        void after(std::chrono::nanoseconds, Block) override {}
        const std::shared_ptr<DispatchQueue> real;
    };
    ThreadDispatch _threads;
};

/// Both kit services, for any thread; programs come and go by themselves.
struct SharedCenter : FakeCommunicationCenter {
    bool pingDaemon() override { return ++pings % 2; }
    bool pingAgentOfUser(unsigned) override { return ++agentPings % 5 == 0; }
    bool postNotificationToAgentOfUser(const Notification&, unsigned) override { return ++posts; }
    std::atomic<int> pings{0}, agentPings{0}, posts{0};
};
struct SharedChecker : FakeUpdateChecker {
    bool updateLatestVersionDictionary() override { return ++fetches % 4; }
    std::optional<std::string> latestVersion() const override {
        return fetches % 3 ? std::optional<std::string>("2.0") : std::nullopt;
    }
    std::atomic<int> fetches{0};
};

TEST(PollingTest, UpdateChecksRunBesideManyChains) {
    constexpr int kClicks = 300;
    headless::HeadlessPlatform host;
    MainQueue mainQueue;
    FirstCycles dispatch{mainQueue};
    Platform platform{host.platform,
                      {.authorization = host.authorization,
                       .clock = host.clock,
                       .dispatch = dispatch,
                       .files = host.files,
                       .sharedWorkspace = host.sharedWorkspace,
                       .effectiveUserId = 501}};
    host.files.files[std::string(preferences::kFile)] = Value(Dictionary());
    SharedCenter center;
    SharedChecker checker;
    const auto bundle = std::make_shared<headless::Bundle>("/pane");
    bundle->info = Value(Dictionary{{"CFBundleIdentifier", "com.quorel.pane"}});
    ConfiguratorInterface configuratorUi;
    PaneInterface ui;
    const auto controller = VXPrefPaneController::initWithBundle(bundle, configuratorUi, platform);
    ASSERT_TRUE(controller);
    ui.load(*controller);
    int clicks = 0;
    ASSERT_TRUE(mainQueue.runUntil([&] {
        if (clicks < kClicks) {
            for (int chain = 0; chain < 5; ++chain) controller->didSelect();
            ++clicks;
            EXPECT_TRUE(ui.checkUpdatesButton->click());
        }
        return clicks == kClicks && controller.use_count() == 1;
    }));
    EXPECT_EQ(center.pings, kClicks * 5);
    EXPECT_GT(center.posts, 0);
    EXPECT_GT(checker.fetches, 0);
    EXPECT_EQ(static_cast<int>(host.application.alerts.size()) + center.posts, kClicks);
}

}  // namespace
}  // namespace quorel::test
