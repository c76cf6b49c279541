#pragma once

#include <string>
#include <vector>

#include "agent/tray/TrayMenu.h"
#include "model/Value.h"
#include "scheduler/Instant.h"

namespace quorel {

/// What the item in the panel says, and what each of its lines is about.
struct TrayContent {
    struct Choice {
        enum What { kPostpone, kSkip, kUnskip, kPause, kResume, kCheckUpdates, kOpenSettings } what;
        std::string token = {};  ///< of the occurrence that it is about
        Seconds length = 0;      ///< so much later
        friend bool operator==(const Choice&, const Choice&) = default;
    };

    std::string title;
    std::vector<MenuItem> menu;
    std::vector<Choice> choices;  ///< in the order of the lines that hand them over, which count from 1
    friend bool operator==(const TrayContent&, const TrayContent&) = default;
};

/// What the daemon told, in which strangers' texts may stand, and what this user may say to it.
struct TrayTold {
    const Array& upcoming;  ///< as `Upcoming` answers
    const Array& pauses;    ///< as `Pauses` answers
    bool maySkip = false;
    bool mayPostpone = false;
    bool mayPause = false;  ///< until tomorrow
};
TrayContent trayContent(const TrayTold& told, Instant now, bool hasSettings);
TrayContent trayContentWithoutDaemon(bool hasSettings);

}  // namespace quorel
