#pragma once

#include "platform/System.h"

namespace quorel::appkit {

/// The main thread, served by the application's run loop, during sheets, alerts and drags as well. `sync` is not for
/// the main thread itself.
class MainQueue : public DispatchQueue {
public:
    void async(Block block) override;
    void sync(const Block &block) override;
    void after(std::chrono::nanoseconds delay, Block block) override;
};

}  // namespace quorel::appkit
