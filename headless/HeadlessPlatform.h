#pragma once

#include "headless/Application.h"
#include "headless/Bundle.h"
#include "headless/Dispatch.h"
#include "headless/Services.h"
#include "headless/TableView.h"
#include "platform/Platform.h"

namespace quorel::headless {

/// A whole host in memory, on which the logic runs complete. One thread.
struct HeadlessPlatform {
    Application application;
    Authorization authorization;
    Bundles bundles;
    Cells cells;
    Clock clock;
    Dispatch dispatch;
    NotificationCenter defaultCenter;
    PropertyListFiles files;
    UserDefaults standardUserDefaults;
    TimeFormat timeFormat;
    Workspace sharedWorkspace;
    Platform platform{{.application = application,
                       .bundles = bundles,
                       .cells = cells,
                       .defaultCenter = defaultCenter,
                       .standardUserDefaults = standardUserDefaults,
                       .timeFormat = timeFormat},
                      {.authorization = authorization,
                       .clock = clock,
                       .dispatch = dispatch,
                       .files = files,
                       .sharedWorkspace = sharedWorkspace,
                       .effectiveUserId = 501}};
};

}  // namespace quorel::headless
