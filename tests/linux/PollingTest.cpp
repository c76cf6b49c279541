#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

#include "kit/VXUpdateChecker.h"
#include "linux/ThreadDispatch.h"
#include "model/Dictionary.h"
#include "pane/VXPrefPaneController.h"
#include "tests/support/HeadlessNib.h"
#include "tests/support/MainQueue.h"

// The controller on real threads: the polling and the update checks as they run inside a host.

namespace quorel::test {
namespace {

using namespace std::chrono_literals;

/// Queues on threads, on which every delay is a short one until `stop`; from then on nothing delayed comes.
class HurriedDispatch : public Dispatch {
public:
    explicit HurriedDispatch(DispatchQueue& mainQueue) : _threads(mainQueue) {}
    std::shared_ptr<DispatchQueue> createQueue(std::string_view label) override {
        auto queue = std::make_shared<Queue>(*this, _threads.createQueue(label));
        const std::lock_guard lock(_mutex);
        std::erase_if(_created, [](const auto& known) { return known.expired(); });
        _created.push_back(queue->real);
        _mostAlive = std::max(_mostAlive, _created.size());
        return queue;
    }
    DispatchQueue& mainQueue() override { return _threads.mainQueue(); }

    void stop() { _stopped = true; }
    bool isQuiet() {
        const std::lock_guard lock(_mutex);
        std::erase_if(_created, [](const auto& known) { return known.expired(); });
        return _created.empty();
    }
    std::size_t mostAlive() {
        const std::lock_guard lock(_mutex);
        return _mostAlive;
    }

private:
    struct Queue : DispatchQueue {
        Queue(HurriedDispatch& owner, std::shared_ptr<DispatchQueue> queue) : dispatch(owner), real(std::move(queue)) {}
        void async(Block block) override { real->async(std::move(block)); }
        void sync(const Block& block) override { real->sync(block); }
        void after(std::chrono::nanoseconds delay, Block block) override {
            EXPECT_EQ(delay, 10s);
            if (!dispatch._stopped) real->after(200us, std::move(block));
        }
        HurriedDispatch& dispatch;
        const std::shared_ptr<DispatchQueue> real;
    };
    ThreadDispatch _threads;
    std::atomic<bool> _stopped{false};
    std::mutex _mutex;
    std::vector<std::weak_ptr<DispatchQueue>> _created;
    std::size_t _mostAlive = 0;
};

/// Both kit services, for any thread; programs come and go by themselves.
struct SharedKit : VXCommunicationCenter, VXUpdateChecker {
    SharedKit() {
        VXCommunicationCenter::setSharedInstance(this);
        VXUpdateChecker::setSharedInstance(this);
    }
    ~SharedKit() override {
        VXCommunicationCenter::setSharedInstance(nullptr);
        VXUpdateChecker::setSharedInstance(nullptr);
    }
    void setObserver(std::weak_ptr<VXCommunicationProtocol>) override {}
    void createServerConnection() override {}
    bool pingDaemon() override { return ++daemonPings % 2; }
    bool pingAgentOfUser(unsigned) override { return ++agentPings % 5 == 0; }
    bool postNotificationToDaemon(const Notification&) override { return ++toDaemon; }
    bool postNotificationToAgentOfUser(const Notification&, unsigned) override { return ++toAgent; }
    std::optional<std::string> versionString() const override { return "1.0"; }
    std::optional<std::string> fullVersionString() const override { return "1.0 (1)"; }
    bool updateLatestVersionDictionary() override { return ++fetches % 4; }
    std::optional<std::string> latestVersion() const override {
        return fetches % 3 ? std::optional<std::string>("2.0") : std::nullopt;
    }
    std::string latestVersionURL() const override { return "https://example.invalid/download"; }

    std::atomic<int> daemonPings{0}, agentPings{0}, toDaemon{0}, toAgent{0}, fetches{0};
};

/// Texts are looked up for controls, so only on the main thread.
struct MainThreadBundle : headless::Bundle {
    using Bundle::Bundle;
    std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                std::string_view table) const override {
        if (std::this_thread::get_id() != mainThread) ++strays;
        return Bundle::localizedStringForKeyValueTable(key, value, table);
    }
    const std::thread::id mainThread = std::this_thread::get_id();
    mutable std::atomic<int> strays{0};
};

class PollingTest : public testing::Test {
protected:
    void SetUp() override {
        bundle->info = Value(Dictionary{{"CFBundleIdentifier", "com.quorel.pane"}});
        controller = VXPrefPaneController::initWithBundle(bundle, configuratorUi, platform);
        ASSERT_TRUE(controller);
        ui.load(*controller);
    }
    void TearDown() override {
        dispatch.stop();
        EXPECT_TRUE(mainQueue.runUntil([this] { return dispatch.isQuiet() && controller.use_count() == 1; }));
        EXPECT_EQ(bundle->strays, 0);
    }

    headless::HeadlessPlatform host;
    MainQueue mainQueue;
    HurriedDispatch dispatch{mainQueue};
    Platform platform{host.platform,
                      {.authorization = host.authorization,
                       .clock = host.clock,
                       .dispatch = dispatch,
                       .files = host.files,
                       .sharedWorkspace = host.sharedWorkspace,
                       .effectiveUserId = 501}};
    SharedKit kit;
    std::shared_ptr<MainThreadBundle> bundle = std::make_shared<MainThreadBundle>("/pane");
    ConfiguratorInterface configuratorUi;
    PaneInterface ui;
    std::shared_ptr<VXPrefPaneController> controller;
};

std::size_t threadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

TEST_F(PollingTest, TenThousandCyclesNeedNoMoreThanAFew) {
    constexpr int kChains = 4;
    const std::size_t threadsBefore = threadCount();
    for (int chain = 0; chain < kChains; ++chain) controller->didSelect();
    ASSERT_TRUE(mainQueue.runUntil([this] { return kit.daemonPings > 1000; }));
    const std::size_t memory = mallinfo2().uordblks;
    ASSERT_TRUE(mainQueue.runUntil([this] { return kit.daemonPings > 11'000; }));
    // Says nothing under a sanitizer, which brings an allocator of its own.
    EXPECT_LT(mallinfo2().uordblks, memory + 256 * 1024UL);
    // How many a busy machine leaves unfinished for a moment is a matter of chance, but never thousands.
    EXPECT_LE(threadCount(), threadsBefore + 8UL * kChains);
    EXPECT_LE(dispatch.mostAlive(), 20u * kChains);
}

TEST_F(PollingTest, UpdateChecksRunBesideManyChains) {
    constexpr int kClicks = 300;
    for (int chain = 0; chain < 16; ++chain) {
        controller->didSelect();
        if (chain % 3 == 0) controller->willUnselect();
    }
    int clicks = 0;
    const auto outcomes = [this] { return static_cast<int>(host.application.alerts.size()) + kit.toAgent; };
    ASSERT_TRUE(mainQueue.runUntil([&] {
        if (clicks < kClicks && kit.daemonPings > clicks * 5) {
            ++clicks;
            EXPECT_TRUE(ui.checkUpdatesButton->click());
        }
        return outcomes() == kClicks && kit.daemonPings > 3000;
    }));
    EXPECT_GT(kit.toAgent, 0);
    EXPECT_GT(kit.fetches, 0);
    for (const char* title : {"Verification impossible", "Nouvelle version dispo"}) {
        EXPECT_TRUE(std::any_of(host.application.alerts.begin(), host.application.alerts.end(), [&](const auto& alert) {
            return alert.title == title;
        })) << title;
    }
}

}  // namespace
}  // namespace quorel::test
