#include "linux/EventLoop.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <system_error>
#include <utility>

namespace quorel {

namespace {

void check(int result, const char* what) {
    if (result < 0) throw std::system_error(-result, std::generic_category(), what);
}

void block(std::initializer_list<int> signals) {
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : signals) sigaddset(&blocked, signal);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
}

using Callback = std::function<void()>;

/// The loop keeps a source until it has been called, also one that lets itself go, and the callback as long.
EventSource owning(sd_event_source* source, std::unique_ptr<Callback> callback) {
    sd_event_source_set_destroy_callback(source, [](void* owned) { delete static_cast<Callback*>(owned); });
    static_cast<void>(callback.release());
    return EventSource(source);
}

}  // namespace

EventLoop::EventLoop() {
    sd_event* loop = nullptr;
    check(sd_event_new(&loop), "no event loop");
    _loop.reset(loop);
    block({SIGCHLD});
}

void EventLoop::endOn(std::initializer_list<int> signals) {
    block(signals);
    // Without a handler of its own, a signal ends the loop with status 0.
    for (const int signal : signals)
        check(sd_event_add_signal(_loop.get(), nullptr, signal, nullptr, nullptr), "no signal");
}

int EventLoop::run() {
    const int status = sd_event_loop(_loop.get());
    return status < 0 ? 1 : status;
}

void EventLoop::end(int status) {
    sd_event_exit(_loop.get(), status);
}

LoopTimer::LoopTimer(EventLoop& loop, std::function<void()> due, clockid_t clock) : _due(std::move(due)) {
    const auto called = [](sd_event_source*, std::uint64_t, void* self) {
        static_cast<LoopTimer*>(self)->_due();
        return 0;
    };
    sd_event_source* source = nullptr;
    check(sd_event_add_time(loop.get(), &source, clock, 0, 1, called, this), "no timer");
    _source.reset(source);
    stop();
}

void LoopTimer::start(std::chrono::microseconds after) {
    const auto delay = std::max<std::chrono::microseconds::rep>(after.count(), 0);
    sd_event_source_set_time_relative(_source.get(), static_cast<std::uint64_t>(delay));
    sd_event_source_set_enabled(_source.get(), SD_EVENT_ONESHOT);
}

void LoopTimer::stop() {
    sd_event_source_set_enabled(_source.get(), SD_EVENT_OFF);
}

bool LoopTimer::isRunning() const {
    return sd_event_source_get_enabled(_source.get(), nullptr) > 0;
}

EventSource whenReadable(EventLoop& loop, int file, std::function<void()> readable) {
    const auto called = [](sd_event_source*, int, std::uint32_t, void* callback) {
        (*static_cast<Callback*>(callback))();
        return 0;
    };
    auto callback = std::make_unique<Callback>(std::move(readable));
    sd_event_source* source = nullptr;
    check(sd_event_add_io(loop.get(), &source, file, EPOLLIN, called, callback.get()), "no file to watch");
    return owning(source, std::move(callback));
}

EventSource onSignal(EventLoop& loop, int signal, std::function<void()> received) {
    block({signal});
    const auto called = [](sd_event_source*, const signalfd_siginfo*, void* callback) {
        (*static_cast<Callback*>(callback))();
        return 0;
    };
    auto callback = std::make_unique<Callback>(std::move(received));
    sd_event_source* source = nullptr;
    check(sd_event_add_signal(loop.get(), &source, signal, called, callback.get()), "no signal");
    return owning(source, std::move(callback));
}

Nudge::Nudge(EventLoop& loop, std::function<void()> nudged) : _file(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    check(_file < 0 ? -errno : 0, "no wake-up call");
    _source = whenReadable(loop, _file, [this, nudged = std::move(nudged)] {
        std::uint64_t count;
        [[maybe_unused]] const auto size = read(_file, &count, sizeof count);
        nudged();
    });
}

Nudge::~Nudge() {
    _source.reset();
    close(_file);
}

void Nudge::give() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto size = write(_file, &one, sizeof one);
}

}  // namespace quorel
