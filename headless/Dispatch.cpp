#include "headless/Dispatch.h"

#include <algorithm>

namespace quorel::headless {

void Queue::async(Block block) {
    _pending.push_back(std::move(block));
    _dispatch._ready.push_back(_dispatch.shared(*this));
}

void Queue::sync(const Block& block) {
    while (!_pending.empty()) drain();
    block();
}

void Queue::after(std::chrono::nanoseconds delay, Block block) {
    _dispatch._timers.push_back(
        {_dispatch._now + delay, _dispatch._order++, _dispatch.shared(*this), std::move(block)});
}

void Queue::drain() {
    if (_pending.empty()) return;  // a sync has run it already
    const Block block = std::move(_pending.front());
    _pending.pop_front();
    block();
}

std::shared_ptr<DispatchQueue> Dispatch::createQueue(std::string_view label) {
    labels.emplace_back(label);
    auto queue = std::make_shared<Queue>(*this, label);
    std::erase_if(_queues, [](const auto& known) { return known.expired(); });
    _queues.push_back(queue);
    return queue;
}

std::size_t Dispatch::liveQueues() const {
    return static_cast<std::size_t>(
        std::count_if(_queues.begin(), _queues.end(), [](const auto& queue) { return !queue.expired(); }));
}

std::shared_ptr<Queue> Dispatch::shared(const Queue& queue) const {
    if (&queue == _main.get()) return _main;
    for (const auto& known : _queues) {
        if (auto strong = known.lock(); strong.get() == &queue) return strong;
    }
    return nullptr;
}

bool Dispatch::step(bool mainToo) {
    const auto next =
        std::find_if(_ready.begin(), _ready.end(), [&](const auto& queue) { return mainToo || queue != _main; });
    if (next == _ready.end()) return false;
    const auto queue = *next;
    _ready.erase(next);
    queue->drain();
    return true;
}

bool Dispatch::fireTimersDueBy(std::chrono::nanoseconds moment) {
    const auto first = std::min_element(_timers.begin(), _timers.end(), [](const Timed& a, const Timed& b) {
        return std::pair(a.due, a.order) < std::pair(b.due, b.order);
    });
    if (first == _timers.end() || first->due > moment) return false;
    Timed timed = std::move(*first);
    _timers.erase(first);
    _now = std::max(_now, timed.due);
    timed.queue->async(std::move(timed.block));
    return true;
}

void Dispatch::run() {
    do {
        while (step(true)) {
        }
    } while (fireTimersDueBy(_now));
}

void Dispatch::runBackground() {
    do {
        while (step(false)) {
        }
    } while (fireTimersDueBy(_now));
}

void Dispatch::advance(std::chrono::nanoseconds duration) {
    const auto end = _now + duration;
    do {
        run();
    } while (fireTimersDueBy(end));
    _now = std::max(_now, end);
}

}  // namespace quorel::headless
