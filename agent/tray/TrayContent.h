#pragma once

#include <string>
#include <vector>

#include "agent/tray/TrayMenu.h"
#include "model/Value.h"

namespace quorel {

/// What the item in the panel says, and what it is about.
struct TrayContent {
    enum Choice { kNone, kPostpone, kSkip, kCheckUpdates, kOpenSettings };

    std::string title;
    std::vector<MenuItem> menu;
    std::string token;  ///< of the occurrence that "not this time" means; empty: there is none
    friend bool operator==(const TrayContent&, const TrayContent&) = default;
};

/// Of what the daemon's `Upcoming` told, in which strangers' texts may stand.
TrayContent trayContent(const Array& upcoming, bool maySkip, bool mayPostpone);
TrayContent trayContentWithoutDaemon();

}  // namespace quorel
