#pragma once

namespace quorel {

/// Starts what changes the plan: the settings window where it is installed, or else what the pane's entry in the
/// desktop's menu starts. The log tells where nothing can be started.
void openSettings();

}  // namespace quorel
