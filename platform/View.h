#pragma once

#include <memory>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Object.h"

namespace quorel {

enum class Anchor { Leading, Trailing, Top, Bottom };

/// A rectangle on screen. Main thread only, like everything that derives from it.
class View : public Object {
public:
    virtual Rect frame() const = 0;  ///< in the superview's coordinates
    virtual void setFrame(const Rect& frame) = 0;
    virtual Rect bounds() const = 0;  ///< in its own coordinates
    virtual bool isHidden() const = 0;
    virtual void setHidden(bool hidden) = 0;

    virtual std::vector<std::shared_ptr<View>> subviews() const = 0;
    /// Shares ownership of the subview. The frame is taken as it is.
    virtual void addSubview(std::shared_ptr<View> subview) = 0;
    virtual void removeFromSuperview() = 0;

    /// Activates a constraint that keeps this view's anchor on the same anchor of `other`.
    virtual void constrainAnchorEqualTo(Anchor anchor, View& other) = 0;

    /// Redraws before returning, without waiting for the event loop.
    virtual void display() = 0;
};

}  // namespace quorel
