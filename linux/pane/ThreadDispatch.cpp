#include "linux/pane/ThreadDispatch.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace quorel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostWorkers = 64;
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

class Strand;

/// Threads for the blocks that are ready. Each takes one block of one strand at a time.
class Workers {
public:
    static Workers& shared() {
        static Workers& workers = *new Workers;  // never destroyed
        return workers;
    }
    void add(std::shared_ptr<Strand> strand);

private:
    void work();

    std::mutex _mutex;
    std::condition_variable _added;
    std::deque<std::shared_ptr<Strand>> _ready;
    std::size_t _workers = 0;
    std::size_t _idle = 0;  // that run no block now; each takes what is ready before it waits
};

/// The blocks of `after`, and the one thread that hands them to their queues when they are due.
class DelayedBlocks {
public:
    static DelayedBlocks& shared() {
        static DelayedBlocks& blocks = *new DelayedBlocks;  // never destroyed
        return blocks;
    }
    void add(Clock::time_point due, std::shared_ptr<Strand> strand, DispatchQueue::Block block);

private:
    struct Entry {
        std::shared_ptr<Strand> strand;
        DispatchQueue::Block block;
    };
    void keepTime();

    std::mutex _mutex;
    std::condition_variable _added;
    std::multimap<Clock::time_point, Entry> _entries;  // of the same moment: in the order of arrival
    bool _started = false;
};

class Strand : public DispatchQueue, public std::enable_shared_from_this<Strand> {
public:
    explicit Strand(std::string_view label) : _label(label) {}

    void async(Block block) override {
        const std::lock_guard lock(_mutex);
        _pending.push_back({std::move(block), nullptr});
        if (!std::exchange(_busy, true)) Workers::shared().add(shared_from_this());
    }

    void sync(const Block& block) override {
        takeTurn();
        block();
        if (hasNext()) Workers::shared().add(shared_from_this());
    }

    void after(std::chrono::nanoseconds delay, Block block) override {
        const auto wait = std::clamp<std::chrono::nanoseconds>(delay, std::chrono::nanoseconds::zero(), kLongestDelay);
        DelayedBlocks::shared().add(Clock::now() + wait, shared_from_this(), std::move(block));
    }

    /// A worker's turn: one block, or the turn given to who waits for it in sync. True when there is another turn.
    bool runNext() {
        Entry next;
        {
            const std::lock_guard lock(_mutex);
            next = std::move(_pending.front());
            _pending.pop_front();
            if (next.waiter) {
                next.waiter->called = true;
                next.waiter->turn.notify_one();
                return false;
            }
        }
        next.block();
        next.block = nullptr;  // what it holds goes before the next block starts
        return hasNext();
    }

private:
    struct Waiter {
        std::condition_variable turn;
        bool called = false;
    };
    struct Entry {
        Block block;
        Waiter* waiter = nullptr;  ///< of a sync, whose block runs elsewhere
    };

    void takeTurn() {
        std::unique_lock lock(_mutex);
        if (!std::exchange(_busy, true)) return;
        Waiter waiter;
        _pending.push_back({nullptr, &waiter});
        waiter.turn.wait(lock, [&] { return waiter.called; });
    }

    /// Ends a turn.
    bool hasNext() {
        const std::lock_guard lock(_mutex);
        return _busy = !_pending.empty();
    }

    const std::string _label;  // for who looks at the process
    std::mutex _mutex;
    std::deque<Entry> _pending;
    bool _busy = false;  // somebody has the turn, or a worker is to take it
};

void Workers::add(std::shared_ptr<Strand> strand) {
    const std::lock_guard lock(_mutex);
    _ready.push_back(std::move(strand));
    // Without a new thread the block waits for one that is occupied now.
    if (_ready.size() > _idle && _workers < kMostWorkers && startThread([this] { work(); })) {
        ++_workers;
        ++_idle;
    }
    _added.notify_one();
}

void Workers::work() {
    std::unique_lock lock(_mutex);
    for (;;) {
        _added.wait(lock, [this] { return !_ready.empty(); });
        --_idle;
        auto strand = std::move(_ready.front());
        _ready.pop_front();
        lock.unlock();
        if (!strand->runNext()) strand = nullptr;
        lock.lock();
        ++_idle;
        if (strand) _ready.push_back(std::move(strand));
    }
}

void DelayedBlocks::add(Clock::time_point due, std::shared_ptr<Strand> strand, DispatchQueue::Block block) {
    const std::lock_guard lock(_mutex);
    if (!_started) _started = startThread([this] { keepTime(); });
    const auto added = _entries.emplace(due, Entry{std::move(strand), std::move(block)});
    if (added == _entries.begin()) _added.notify_one();
}

void DelayedBlocks::keepTime() {
    std::unique_lock lock(_mutex);
    for (;;) {
        if (_entries.empty()) {
            _added.wait(lock);
        } else if (const auto due = _entries.begin()->first; due > Clock::now()) {
            _added.wait_until(lock, due);
        } else {
            auto [strand, block] = std::move(_entries.begin()->second);
            _entries.erase(_entries.begin());
            lock.unlock();
            strand->async(std::move(block));
            lock.lock();
        }
    }
}

}  // namespace

std::shared_ptr<DispatchQueue> ThreadDispatch::createQueue(std::string_view label) {
    return std::make_shared<Strand>(label);
}

}  // namespace quorel
