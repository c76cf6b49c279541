#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

class StatusTest : public PaneTest {
protected:
    int cycles() const {
        EXPECT_EQ(static_cast<std::size_t>(center.daemonPings), center.agentPings.size());
        return center.daemonPings;
    }
};

TEST_F(StatusTest, EachRowShowsItsOwnProgram) {
    create();
    for (const char* expected : {"++", "+-", "-+", "--", "++"}) {
        center.daemonAlive = expected[0] == '+';
        center.agentAlive = expected[1] == '+';
        const std::string before = lights();
        pane->checkDaemon();
        pane->checkUserAgent();
        host.dispatch.runBackground();
        EXPECT_EQ(lights(), before) << "only the main thread touches controls";
        host.dispatch.run();
        EXPECT_EQ(lights(), expected);
    }
    EXPECT_EQ(center.agentPings.front(), 501u);
}

TEST_F(StatusTest, ThePauseIsCountedFromTheEndOfACycle) {
    center.onPing = [&] { host.dispatch.elapse(3s); };
    open();  // pings end at 6, and again at 22, 38, ...
    EXPECT_EQ(host.dispatch.now(), 6s);
    struct {
        std::chrono::nanoseconds until;
        int cycles;
    } const cases[] = {{15'999ms, 1}, {16s, 2}, {31'999ms, 2}, {32s, 3}, {48s, 4}};
    for (const auto& [until, expected] : cases) {
        host.dispatch.advance(until - std::min(until, host.dispatch.now()));
        EXPECT_EQ(cycles(), expected) << until.count();
    }
}

TEST_F(StatusTest, LaterCyclesDoNotWaitForTheMainThread) {
    open();
    host.dispatch.elapse(10s);
    host.dispatch.runBackground();
    EXPECT_EQ(cycles(), 2);
}

TEST_F(StatusTest, DaemonFirstAndOnQueuesOfTheirOwn) {
    std::vector<std::size_t> ahead;
    center.onPing = [&] { ahead.push_back(static_cast<std::size_t>(center.daemonPings) - center.agentPings.size()); };
    open();
    host.dispatch.advance(10s);
    EXPECT_EQ(ahead, (std::vector<std::size_t>{1, 0, 1, 0}));
    const std::string cycle = "-[VXPrefPaneController checkProcesses]";
    EXPECT_EQ(host.dispatch.labels,
              (std::vector<std::string>{cycle, cycle + "_block_invoke", cycle, cycle + "_block_invoke"}));
}

TEST_F(StatusTest, EachSelectionStartsAChainThatNeverEnds) {
    open();  // polls at 0, 10, 20, ...
    host.dispatch.advance(4s);
    pane->willUnselect();
    pane->didSelect();  // and at 4, 14, 24, ...
    pane->willUnselect();
    center.agentPings.clear();
    center.daemonPings = 0;
    center.daemonAlive = true;
    const std::weak_ptr<VXPrefPaneController> watched = pane;
    pane = nullptr;
    for (const int polls : {1, 2, 3, 4}) {
        host.dispatch.advance(polls % 2 ? 6s : 4s);
        EXPECT_EQ(cycles(), polls);
        EXPECT_EQ(lights(), "+-");
    }
    const std::size_t queues = host.dispatch.liveQueues();
    const long holders = watched.use_count();
    host.dispatch.advance(10'000s);  // and nothing piles up
    EXPECT_EQ(cycles(), 2'004);
    EXPECT_EQ(host.dispatch.pendingTimers(), 2u);
    EXPECT_EQ(host.dispatch.liveQueues(), queues);
    EXPECT_EQ(watched.use_count(), holders);
    EXPECT_GT(holders, 0);
}

}  // namespace
}  // namespace quorel::test
