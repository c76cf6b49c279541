#pragma once

#include <functional>
#include <memory>
#include <string>

#include "linux/BusEndpoint.h"

namespace quorel {

/// Takes "DaemonMustReloadPrefs" on the system bus and stores what it brings. Each call runs on a thread of its own:
/// the bus is served, and others may save, while somebody looks for a password.
class Daemon {
public:
    /// `root` stands before absolute paths of the product.
    explicit Daemon(std::string root);
    /// Waits for a write under way; nothing is written after it. Open questions to polkit end with the process.
    ~Daemon();

    /// False when the bus or the name is not to be had, with the reason in `error`. `lost` is called, on another
    /// thread, when the bus has gone later.
    bool open(std::function<void()> lost, std::string& error);

private:
    class Desk;
    std::shared_ptr<Desk> _desk;  // shared with the calls under way
    std::unique_ptr<BusEndpoint> _endpoint;
};

}  // namespace quorel
