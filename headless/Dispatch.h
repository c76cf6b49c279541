#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/System.h"

namespace quorel::headless {

class Dispatch;

/// A queue on a virtual clock. Everything runs on the one thread that drives the Dispatch.
class Queue : public DispatchQueue {
public:
    Queue(Dispatch& dispatch, std::string_view queueLabel) : label(queueLabel), _dispatch(dispatch) {}
    void async(Block block) override;
    void sync(const Block& block) override;
    void after(std::chrono::nanoseconds delay, Block block) override;

    const std::string label;

private:
    friend class Dispatch;
    void drain();
    Dispatch& _dispatch;
    std::deque<Block> _pending;
};

/// Time stands still but in `advance` and `elapse`; blocks run only in `run` and `advance`.
class Dispatch : public quorel::Dispatch {
public:
    Dispatch() : _main(std::make_shared<Queue>(*this, "main")) {}
    std::shared_ptr<DispatchQueue> createQueue(std::string_view label) override;
    DispatchQueue& mainQueue() override { return *_main; }

    /// Runs what is due until nothing is, on all queues.
    void run();
    /// Runs what is due on the private queues alone, as while the main thread is busy.
    void runBackground();
    /// Lets time pass, and runs everything at its own moment.
    void advance(std::chrono::nanoseconds duration);
    /// From within a block: the block takes that long.
    void elapse(std::chrono::nanoseconds duration) { _now += duration; }
    std::chrono::nanoseconds now() const { return _now; }

    std::vector<std::string> labels;  ///< of every queue ever created
    std::size_t liveQueues() const;   ///< private queues that still exist
    std::size_t pendingTimers() const { return _timers.size(); }

private:
    friend class Queue;
    struct Timed {
        std::chrono::nanoseconds due;
        std::uint64_t order;
        std::shared_ptr<Queue> queue;
        DispatchQueue::Block block;
    };
    std::shared_ptr<Queue> shared(const Queue& queue) const;
    bool step(bool mainToo);
    bool fireTimersDueBy(std::chrono::nanoseconds moment);

    std::chrono::nanoseconds _now{0};
    std::uint64_t _order = 0;
    std::shared_ptr<Queue> _main;
    std::vector<std::weak_ptr<Queue>> _queues;
    std::deque<std::shared_ptr<Queue>> _ready;  ///< one entry per pending block, in order of arrival
    std::vector<Timed> _timers;
};

}  // namespace quorel::headless
