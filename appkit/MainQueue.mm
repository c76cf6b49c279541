#import "appkit/MainQueue.h"

#import <AppKit/AppKit.h>
#ifdef GNUSTEP
#import <Foundation/NSThread.h>
#endif

#include <utility>

#import "appkit/ActionTarget.h"

namespace quorel::appkit {

namespace {

NSArray *modes() {
    return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

void perform(DispatchQueue::Block block, bool wait) {
#ifdef GNUSTEP
    GSRegisterCurrentThread();  // a thread of the standard library is none of the framework's yet
#endif
    @autoreleasepool {
        VXActionTarget *target = [[[VXActionTarget alloc] initWithAction:std::move(block)] autorelease];
        [target performSelectorOnMainThread:@selector(perform:) withObject:nil waitUntilDone:wait modes:modes()];
    }
}

}  // namespace

void MainQueue::async(Block block) {
    perform(std::move(block), false);
}

void MainQueue::sync(const Block &block) {
    perform(block, true);
}

void MainQueue::after(std::chrono::nanoseconds delay, Block block) {
    const double seconds = std::chrono::duration<double>(delay).count();
    // Timers belong to a thread's run loop: the main thread starts this one itself.
    async([seconds, block = std::move(block)] {
        VXActionTarget *target = [[[VXActionTarget alloc] initWithAction:block] autorelease];
        [target performSelector:@selector(perform:) withObject:nil afterDelay:seconds inModes:modes()];
    });
}

}  // namespace quorel::appkit
