#pragma once

#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/NotificationCenter.h"
#include "platform/System.h"
#include "platform/TableView.h"

namespace quorel {

/// What the pane asks of a toolkit. The services outlive every object that was given them.
struct Toolkit {
    Application& application;
    Bundles& bundles;
    Cells& cells;
    NotificationCenter& defaultCenter;
    UserDefaults& standardUserDefaults;
    TimeFormat& timeFormat;
};

/// Everything that the logic asks of its host, gathered once by the composition root.
struct Platform : Toolkit, System {};

}  // namespace quorel
