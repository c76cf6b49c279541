#pragma once

#include <memory>

#include "platform/View.h"

namespace quorel {

/// The controller's face to a host that embeds it. Main thread.
class VXPrefPaneControllerProtocol {
public:
    virtual ~VXPrefPaneControllerProtocol() = default;
    virtual void willSelect() = 0;
    virtual void didSelect() = 0;
    virtual void willUnselect() = 0;
    virtual void about() = 0;
    virtual std::shared_ptr<Window> vxPrefPaneWindow() const = 0;
    /// The window over which the pane runs its sheets; held weakly.
    virtual void setVxPrefPaneWindow(const std::shared_ptr<Window>& window) = 0;
    virtual std::shared_ptr<View> mainView() const = 0;
    virtual void setMainView(const std::shared_ptr<View>& view) = 0;
    virtual unsigned shouldUnselect() const = 0;
    virtual void setShouldUnselect(unsigned answer) = 0;
};

}  // namespace quorel
