#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>

namespace quorel {

/// Runs its blocks one at a time, in order. Usable from any thread. Blocks must not throw.
class DispatchQueue {
public:
    using Block = std::function<void()>;
    virtual ~DispatchQueue() = default;
    virtual void async(Block block) = 0;
    /// Returns when the block has returned. Not from a block of the same queue.
    virtual void sync(const Block& block) = 0;
    /// Pending blocks keep the queue alive, whoever else let go of it.
    virtual void after(std::chrono::nanoseconds delay, Block block) = 0;
};

/// A repeating timer of the main thread.
class Timer {
public:
    virtual ~Timer() = default;
    virtual void invalidate() = 0;
};

class Dispatch {
public:
    virtual ~Dispatch() = default;
    virtual std::shared_ptr<DispatchQueue> createQueue(std::string_view label) = 0;
    /// The queue of the main thread, served by the application's event loop, modal loops included.
    virtual DispatchQueue& mainQueue() = 0;
};

}  // namespace quorel
