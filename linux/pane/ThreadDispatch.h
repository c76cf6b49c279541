#pragma once

#include "platform/System.h"

namespace quorel {

/// Queues on threads. All instances share one pool for the process: a thread is added when a block is ready and every
/// thread is occupied, up to 64, and is kept. A block that waits for another queue occupies its thread, so do not let
/// 64 of them wait for each other. `sync` on an idle queue needs no thread but the caller's. Any thread.
///
/// The threads are never joined and what they work on is never destroyed, so that the process may exit at any moment;
/// the code must stay loaded once a queue was used.
class ThreadDispatch : public Dispatch {
public:
    /// The queue of the main thread is served by others; it outlives the dispatch.
    explicit ThreadDispatch(DispatchQueue& mainQueue) : _mainQueue(mainQueue) {}
    std::shared_ptr<DispatchQueue> createQueue(std::string_view label) override;
    DispatchQueue& mainQueue() override { return _mainQueue; }

private:
    DispatchQueue& _mainQueue;
};

}  // namespace quorel
