#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <utility>

#include "platform/System.h"

namespace quorel::test {

/// The main queue of a program without an event loop: served by whoever runs it.
class MainQueue : public DispatchQueue {
public:
    void async(Block block) override {
        const std::lock_guard lock(_mutex);
        _pending.push_back(std::move(block));
        _changed.notify_all();
    }
    void sync(const Block& block) override {
        bool done = false;
        std::unique_lock lock(_mutex);
        _pending.push_back([&] {
            block();
            const std::lock_guard inner(_mutex);
            done = true;
            _changed.notify_all();
        });
        _changed.notify_all();
        _changed.wait(lock, [&] { return done; });
    }
    void after(std::chrono::nanoseconds, Block) override { std::abort(); }  // nobody asks for it

    /// Runs blocks until `done`, which is asked after each of them; false when that took too long.
    template <class Done>
    bool runUntil(Done done, std::chrono::seconds limit = std::chrono::seconds(60)) {
        const auto end = Clock::now() + limit;
        while (!done()) {
            if (Clock::now() > end) return false;
            runOne();
        }
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;
    void runOne() {
        std::unique_lock lock(_mutex);
        if (_pending.empty()) _changed.wait_for(lock, std::chrono::milliseconds(5));
        if (_pending.empty()) return;
        const Block block = std::move(_pending.front());
        _pending.pop_front();
        lock.unlock();
        block();
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Block> _pending;
};

}  // namespace quorel::test
