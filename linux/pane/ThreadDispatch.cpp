#include "linux/pane/ThreadDispatch.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace quorel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::hours kLongestDelay{24 * 365 * 50};  // within what the clock can count

/// False when the system has no thread to give.
template <class Work>
bool startThread(Work work) {
    try {
        std::thread(std::move(work)).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

class Queue : public DispatchQueue, public std::enable_shared_from_this<Queue> {
public:
    explicit Queue(std::string_view label) : _label(label) {}

    void async(Block block) override {
        if (add(std::move(block))) passOn();
    }

    void sync(const Block& block) override {
        std::unique_lock lock(_mutex);
        _turnEnded.wait(lock, [this] { return !_busy; });
        _busy = true;
        lock.unlock();
        block();
        passOn();
    }

    void after(std::chrono::nanoseconds delay, Block block) override {
        const auto wait = std::clamp<std::chrono::nanoseconds>(delay, std::chrono::nanoseconds::zero(), kLongestDelay);
        startThread([self = shared_from_this(), due = Clock::now() + wait, block = std::move(block)]() mutable {
            std::this_thread::sleep_until(due);
            if (self->add(std::move(block))) self->runAll();
        });
    }

private:
    /// True when nobody has the turn to run blocks: then whoever added this one has it.
    bool add(Block block) {
        const std::lock_guard lock(_mutex);
        _pending.push_back(std::move(block));
        return !std::exchange(_busy, true);
    }

    /// Gives the turn to a thread, where there is anything to run.
    void passOn() {
        const std::lock_guard lock(_mutex);
        _busy = !_pending.empty() && startThread([self = shared_from_this()] { self->runAll(); });
        if (!_busy) _turnEnded.notify_all();
    }

    void runAll() {
        std::unique_lock lock(_mutex);
        while (!_pending.empty()) {
            Block next = std::move(_pending.front());
            _pending.pop_front();
            lock.unlock();
            next();
            next = nullptr;  // what it holds goes before the next block starts
            lock.lock();
        }
        _busy = false;
        _turnEnded.notify_all();
    }

    const std::string _label;  // for who looks at the process
    std::mutex _mutex;
    std::condition_variable _turnEnded;
    std::deque<Block> _pending;
    bool _busy = false;  // some thread has the turn to run blocks
};

}  // namespace

std::shared_ptr<DispatchQueue> ThreadDispatch::createQueue(std::string_view label) {
    return std::make_shared<Queue>(label);
}

}  // namespace quorel
