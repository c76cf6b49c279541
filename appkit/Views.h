#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <utility>

#include "platform/View.h"

namespace quorel::appkit {

/// Keeps an Objective-C object for as long as a wrapper of it lives.
template <class Class>
class Retained {
public:
    explicit Retained(Class *object) : _object([object retain]) {}
    Retained(const Retained &) = delete;
    Retained &operator=(const Retained &) = delete;
    ~Retained() { [_object release]; }
    Class *get() const { return _object; }

private:
    Class *_object;
};

inline Rect rectFrom(NSRect rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

inline NSRect nsRect(const Rect &rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

/// Whatever wraps a view can be asked for it, so that wrapped views can be put into each other.
class NativeView {
public:
    explicit NativeView(NSView *view) : _view(view) {}
    virtual ~NativeView() = default;
    NSView *nativeView() const { return _view.get(); }

private:
    Retained<NSView> _view;
};

void addNativeSubview(NSView *superview, quorel::View &subview);
void pinAnchor(NSView *view, Anchor anchor, quorel::View &other);
std::vector<std::shared_ptr<quorel::View>> nativeSubviews(NSView *view);

/// From an interface of views or controls to an NSView. Main thread.
template <class Interface>
class BasicView : public Interface, public NativeView {
public:
    explicit BasicView(NSView *view) : NativeView(view) {}
    Rect frame() const override { return rectFrom([nativeView() frame]); }
    void setFrame(const Rect &frame) override { [nativeView() setFrame:nsRect(frame)]; }
    Rect bounds() const override { return rectFrom([nativeView() bounds]); }
    void setHidden(bool hidden) override { [nativeView() setHidden:hidden]; }
    std::vector<std::shared_ptr<quorel::View>> subviews() const override { return nativeSubviews(nativeView()); }
    void addSubview(std::shared_ptr<quorel::View> subview) override { addNativeSubview(nativeView(), *subview); }
    void removeFromSuperview() override { [nativeView() removeFromSuperview]; }
    void constrainAnchorEqualTo(Anchor anchor, quorel::View &other) override { pinAnchor(nativeView(), anchor, other); }
    void display() override { [nativeView() display]; }
};

using View = BasicView<quorel::View>;

class Window : public quorel::Window {
public:
    explicit Window(NSWindow *window) : _window(window) {}
    Rect frame() const override { return rectFrom([_window.get() frame]); }
    void setFrameDisplayAnimate(const Rect &frame, bool display, bool animate) override {
        // An animation that nobody can see would only end too late.
        [_window.get() setFrame:nsRect(frame) display:display animate:animate && [_window.get() isVisible]];
    }
    void orderOut(const Object *) override { [_window.get() orderOut:nil]; }
    NSWindow *nativeWindow() const { return _window.get(); }

private:
    Retained<NSWindow> _window;
};

/// Null for nil: an outlet that the interface file leaves open.
template <class Wrapper, class Class>
std::shared_ptr<Wrapper> wrapped(Class *object) {
    return object ? std::make_shared<Wrapper>(object) : nullptr;
}

}  // namespace quorel::appkit
