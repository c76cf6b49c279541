#pragma once

#include "platform/Geometry.h"
#include "platform/Object.h"

namespace quorel {

/// A window or sheet. Main thread.
class Window : public Object {
public:
    virtual Rect frame() const = 0;  ///< on the screen, title bar included
    virtual void setFrameDisplayAnimate(const Rect& frame, bool display, bool animate) = 0;
    virtual void orderOut(const Object* sender) = 0;
};

}  // namespace quorel
