#pragma once

#include <memory>

#include "platform/Controls.h"
#include "platform/View.h"

namespace quorel {

/// The controls of the pane's interface file: null until it is loaded. From `awakeFromNib` on all are there, except
/// those that may be null; a face that misses one gives a control that takes every message and does nothing.
struct PaneOutlets {
    std::shared_ptr<View> configView;  ///< container of the configurator's view; may be null
    std::shared_ptr<Window> aboutSheet;
    std::shared_ptr<Button> applyButton;
    std::shared_ptr<Button> revertButton;
    std::shared_ptr<Button> authButton;  ///< two states: on is unlocked
    std::shared_ptr<Button> checkUpdateAtStartup;
    std::shared_ptr<TextField> lockDescLabel;
    std::shared_ptr<PopUpButton> popUpUpdate;
    std::shared_ptr<Button> menuCheck;
    std::shared_ptr<Button> networkAdminCheck;
    std::shared_ptr<TextField> statusDaemon;
    std::shared_ptr<ImageView> statusDaemonImageView;
    std::shared_ptr<TextField> statusUserAgent;
    std::shared_ptr<ImageView> statusUserAgentImageView;
    std::shared_ptr<TextField> theVersion;
};

}  // namespace quorel
