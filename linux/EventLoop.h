#pragma once

#include <systemd/sd-event.h>

#include <chrono>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <memory>

namespace quorel {

/// Gives back what libsystemd has handed out.
template <auto kRelease>
struct Release {
    void operator()(auto* object) const { kRelease(object); }
};
using EventSource = std::unique_ptr<sd_event_source, Release<sd_event_source_disable_unref>>;

/// What a program waits on: its bus, timers, signals, children. Everything is called on the thread that runs the loop,
/// one at a time, and must return soon. Whatever watches the loop must go before it does. Constructors here throw
/// std::system_error. sd-event's own functions serve for what has no class here (`get`).
class EventLoop {
public:
    /// Blocks SIGCHLD, which tells the loop of children, on the calling thread.
    EventLoop();

    sd_event* get() const { return _loop.get(); }
    /// Such a signal ends the loop with status 0. Blocks the signals: call it before threads are started.
    void endOn(std::initializer_list<int> signals);
    /// Returns the status that `end` was given, or that a connection to a bus ends with when the bus goes.
    int run();
    void end(int status);

private:
    std::unique_ptr<sd_event, Release<sd_event_unref>> _loop;
};

/// Calls once when its time has come. By CLOCK_BOOTTIME it goes on while the computer sleeps: what has become due
/// meanwhile is called on awaking. By CLOCK_MONOTONIC it stands still.
class LoopTimer {
public:
    LoopTimer(EventLoop& loop, std::function<void()> due, clockid_t clock = CLOCK_BOOTTIME);
    LoopTimer(const LoopTimer&) = delete;

    /// A timer that runs begins anew.
    void start(std::chrono::microseconds after);
    void stop();
    bool isRunning() const;

private:
    const std::function<void()> _due;
    EventSource _source;
};

/// Calls whenever a file, which stays the caller's, has something to read.
EventSource whenReadable(EventLoop& loop, int file, std::function<void()> readable);

/// Calls on such a signal, which it blocks: call it before threads are started.
EventSource onSignal(EventLoop& loop, int signal, std::function<void()> received);

/// How another thread gets something called on the loop's.
class Nudge {
public:
    Nudge(EventLoop& loop, std::function<void()> nudged);
    ~Nudge();
    Nudge(const Nudge&) = delete;

    /// Any thread. Several in a row may be followed by one call alone.
    void give() const;

private:
    const int _file;
    EventSource _source;
};

}  // namespace quorel
