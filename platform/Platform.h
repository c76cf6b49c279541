#pragma once

#include "platform/Application.h"
#include "platform/Authorization.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "platform/NotificationCenter.h"
#include "platform/PropertyListFiles.h"
#include "platform/TableView.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace quorel {

/// Everything that the logic asks of its host, gathered once by the composition root.
/// The services outlive every object that was given the platform.
struct Platform {
    Application& application;
    Authorization& authorization;
    Bundles& bundles;
    Cells& cells;
    Clock& clock;
    Dispatch& dispatch;
    NotificationCenter& defaultCenter;
    PropertyListFiles& files;
    UserDefaults& standardUserDefaults;
    Workspace& sharedWorkspace;
    unsigned effectiveUserId = 0;  ///< of this process, as geteuid answers it
};

}  // namespace quorel
