#pragma once

#include <functional>

#include "linux/bus/Bus.h"
#include "linux/login/LidHold.h"
#include "linux/login/Logind.h"

namespace quorel {

/// Notices when the computer goes to sleep or down, by whatever cause, and keeps it from doing so for the moment that
/// its listener takes. One thread; loop and bus must outlive it.
class SleepWatch {
public:
    struct Events {
        /// The computer sleeps after this has returned.
        std::function<void(Lid)> goingToSleep;
        /// Awake again, or not gone to sleep or down after all; whether it slept, the clocks tell. logind has been
        /// known not to say so.
        std::function<void(Lid)> resumed;
        /// It goes down after this has returned.
        std::function<void()> goingDown;
    };
    SleepWatch(EventLoop& loop, sd_bus* bus, Events events);

private:
    void takeLock();
    void letGo();
    void sleepAnnounced(bool begins);
    void shutdownAnnounced(bool begins);
    void ended();
    void askLid(std::function<void(Lid)> then);

    sd_bus* _bus;
    const Events _events;
    InhibitorLock _lock;
    int _attempts = 0;
    BusSlot _lidCall;
    LoopTimer _lockTimer;
    BusSlot _sleepSignal;
    BusSlot _shutdownSignal;
    BusSlot _ownerSignal;
};

}  // namespace quorel
