#pragma once

#include "platform/System.h"

namespace quorel {

/// Queues on threads: each has one while it has blocks to run, and one more for each block that is to come later. A
/// block for which the system has no thread runs with the next one of its queue; a later one is lost. `sync` runs on
/// the caller's thread. Any thread.
///
/// The threads are never joined, so that the process may exit at any moment; the code must stay loaded once a queue was
/// used.
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
