#pragma once

#include <memory>
#include <vector>

namespace quorel {

/// Root of whatever can be a sender, a target, a view or a loaded class.
/// A null pointer stands for "nobody": an action sent by code rather than by a control.
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;
};

/// Points, in the coordinates of the frameworks: the origin is at the bottom left.
struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// A picture, opaque to the logic; it comes from a Bundle and goes into an ImageView.
class Image : public Object {};

enum class Anchor { Leading, Trailing, Top, Bottom };

/// A rectangle on screen. Main thread only, like everything that derives from it.
class View : public Object {
public:
    virtual Rect frame() const = 0;  ///< in the superview's coordinates
    virtual void setFrame(const Rect& frame) = 0;
    virtual Rect bounds() const = 0;  ///< in its own coordinates
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

/// A window or sheet. Main thread.
class Window : public Object {
public:
    virtual Rect frame() const = 0;  ///< on the screen, title bar included
    virtual void setFrameDisplayAnimate(const Rect& frame, bool display, bool animate) = 0;
    virtual void orderOut(const Object* sender) = 0;
};

}  // namespace quorel
