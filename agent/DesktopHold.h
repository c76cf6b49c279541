#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "linux/bus/Bus.h"

namespace quorel {

/// Keeps the session's desktop from putting the computer to sleep by itself, by what desktops offer on the session bus:
/// many overlook logind's lock, which the daemon holds meanwhile. Begins anew with a desktop's program that has come
/// later or was restarted; a program that goes lets go of everything. The thread of the bus's loop.
class DesktopHold {
public:
    explicit DesktopHold(sd_bus* session);
    DesktopHold(const DesktopHold&) = delete;

    void keepAwake(bool keep);

private:
    struct Means {
        const char *name, *path, *interface, *release;
        bool isGnome;
    };
    struct Hold {
        const Means& means;
        BusSlot owner{};
        BusSlot call{};                         // while it is asked for
        std::optional<std::uint32_t> number{};  // while it is held
    };
    static const Means kMeans[];

    void settle(Hold& hold);
    void ask(Hold& hold);

    sd_bus* const _session;
    std::vector<Hold> _holds;
    bool _keeps = false;
};

}  // namespace quorel
