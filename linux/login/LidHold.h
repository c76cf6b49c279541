#pragma once

#include <functional>

#include "linux/EventLoop.h"
#include "linux/login/Logind.h"
#include "scheduler/World.h"

namespace quorel {

/// Asks logind for the lid. An open one where it does not say.
BusSlot readLid(sd_bus* bus, std::function<void(Lid)> answered);

/// Keeps a closed lid from sending the computer to sleep, and tells of the lid every few seconds meanwhile: logind
/// announces neither that it is opened nor that the power goes. One thread; loop and bus must outlive it.
class LidHold {
public:
    LidHold(EventLoop& loop, sd_bus* bus, std::function<void(Lid)> seen);

    void hold(bool hold);

private:
    void askForLid();

    sd_bus* _bus;
    const std::function<void(Lid)> _seen;
    InhibitorLock _lock;
    LoopTimer _timer;
    BusSlot _call;
};

}  // namespace quorel
