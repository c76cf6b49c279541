#include "linux/pane/ThreadDispatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <numeric>
#include <thread>
#include <vector>

#include "tests/support/MainQueue.h"

// The sanitizer's threads go on for a second after exit by default; a thread that is just being let go is no leak.
extern "C" const char* __tsan_default_options() {
    return "atexit_sleep_ms=50:report_thread_leaks=0";
}

namespace quorel::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kLimit = 30s;

bool holdsWithin(const std::function<bool()>& condition) {
    const auto end = Clock::now() + kLimit;
    while (!condition()) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

/// What a block waits for until the test lets it go.
class Gate {
public:
    void open() { _promise.set_value(); }
    void pass() const { _future.wait(); }

private:
    std::promise<void> _promise;
    std::shared_future<void> _future = _promise.get_future().share();
};

class ThreadDispatchTest : public testing::Test {
protected:
    MainQueue mainQueue;
    ThreadDispatch dispatch{mainQueue};
};

TEST_F(ThreadDispatchTest, BlocksOfAQueueRunOneAtATimeInEachCallersOrder) {
    constexpr int kThreads = 8;
    constexpr int kBlocks = 1000;
    const auto queue = dispatch.createQueue("order");
    std::vector<std::vector<int>> seen(kThreads);  // unguarded, like the count: the queue is the guard
    int count = 0;
    std::vector<std::thread> threads;
    for (auto& own : seen) {
        threads.emplace_back([&] {
            for (int i = 0; i < kBlocks; ++i) {
                const auto block = [&count, &own, i] { ++count, own.push_back(i); };
                i % 3 == 0 ? queue->sync(block) : queue->async(block);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    queue->sync([] {});
    std::vector<int> inOrder(kBlocks);
    std::iota(inOrder.begin(), inOrder.end(), 0);
    for (const auto& order : seen) EXPECT_EQ(order, inOrder);
    EXPECT_EQ(count, kThreads * kBlocks);
}

TEST_F(ThreadDispatchTest, SyncRunsOnTheCallersThreadAndOthersElsewhere) {
    const auto queue = dispatch.createQueue("sync");
    Gate gate;
    std::thread::id contended, before, after;
    queue->async([&] {
        gate.pass();
        before = std::this_thread::get_id();
    });
    std::thread opener([&] { gate.open(); });
    queue->sync([&] {
        contended = std::this_thread::get_id();
        queue->async([&] { after = std::this_thread::get_id(); });
    });
    opener.join();
    queue->sync([] {});
    EXPECT_EQ(contended, std::this_thread::get_id());
    for (const std::thread::id other : {before, after}) {
        EXPECT_NE(other, std::thread::id());
        EXPECT_NE(other, std::this_thread::get_id());
    }
}

TEST_F(ThreadDispatchTest, AfterWaitsAndKeepsTheOrderOfTime) {
    const auto queue = dispatch.createQueue("after");
    const auto start = Clock::now();
    std::vector<int> order;
    std::vector<Clock::duration> waited;
    std::atomic<int> ran{0};
    const auto add = [&](std::chrono::nanoseconds delay, int name) {
        queue->after(delay, [&, name] {
            order.push_back(name);
            waited.push_back(Clock::now() - start);
            ++ran;
        });
    };
    add(std::chrono::nanoseconds::max(), 99);  // holds nothing up
    add(60ms, 3);
    add(20ms, 2);
    add(std::chrono::nanoseconds::min(), 1);
    ASSERT_TRUE(holdsWithin([&] { return ran == 3; }));
    queue->sync([] {});
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
    EXPECT_GE(waited[1], 20ms);
    EXPECT_GE(waited[2], 60ms);
}

TEST(ThreadDispatchExitTest, TheProcessMayExitAtAnyMoment) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int run = 0; run < 50; ++run) {
        EXPECT_EXIT(
            {
                MainQueue mainQueue;
                ThreadDispatch dispatch(mainQueue);
                std::atomic<int> ran{0};
                std::function<void(std::chrono::nanoseconds)> poll = [&](std::chrono::nanoseconds pause) {
                    const auto queue = dispatch.createQueue("poll");
                    queue->sync([&] { ++ran; });
                    dispatch.createQueue("next")->after(pause, [&poll, pause] { poll(pause); });
                };
                for (int chain = 0; chain < 6; ++chain) poll(chain * 20us);
                const auto crowded = dispatch.createQueue("crowded");
                for (int i = 0; i < 100; ++i) crowded->async([] { std::this_thread::sleep_for(100us); });
                dispatch.createQueue("waits for a queue")->async([&] { crowded->sync([] {}); });
                dispatch.createQueue("waits for main")->async([&] { mainQueue.sync([] {}); });
                dispatch.createQueue("far away")->after(1h, [] {});
                if (!holdsWithin([&] { return ran > 10 + 5 * run; })) std::abort();
                if (run % 5 == 4) {
                    dispatch.createQueue("leaves")->async([] { std::exit(0); });
                    std::this_thread::sleep_for(kLimit);
                }
                std::exit(0);
            },
            testing::ExitedWithCode(0), "");
    }
}

}  // namespace
}  // namespace quorel::test
