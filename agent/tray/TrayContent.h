#pragma once

#include <string>
#include <vector>

#include "agent/tray/TrayMenu.h"
#include "model/Value.h"

namespace quorel {

/// What the item in the panel says, and what each of its lines is about.
struct TrayContent {
    struct Choice {
        enum What { kPostpone, kSkip, kCheckUpdates, kOpenSettings } what;
        std::string token = {};  ///< of the occurrence that it is about
        friend bool operator==(const Choice&, const Choice&) = default;
    };

    std::string title;
    std::vector<MenuItem> menu;
    std::vector<Choice> choices;  ///< in the order of the lines that hand them over, which count from 1
    friend bool operator==(const TrayContent&, const TrayContent&) = default;
};

/// Of what the daemon's `Upcoming` told, in which strangers' texts may stand.
TrayContent trayContent(const Array& upcoming, bool maySkip, bool mayPostpone, bool hasSettings);
TrayContent trayContentWithoutDaemon(bool hasSettings);

}  // namespace quorel
