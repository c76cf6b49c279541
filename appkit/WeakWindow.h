#pragma once

#import <AppKit/AppKit.h>

@class VXWindowWitness;

namespace quorel::appkit {

/// Names a window without keeping it, and nothing once it is gone. The runtime here has no weak references: an empty
/// view inside the window tells when it goes. Main thread.
class WeakWindow {
public:
    WeakWindow() = default;
    WeakWindow(const WeakWindow &) = delete;
    WeakWindow &operator=(const WeakWindow &) = delete;
    ~WeakWindow() { set(nil); }
    NSWindow *get() const { return _window; }
    void set(NSWindow *window);

private:
    NSWindow *_window = nil;
    VXWindowWitness *_witness = nil;
};

}  // namespace quorel::appkit
