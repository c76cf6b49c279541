// Loaded into the settings application that the desktop's menu starts: shows it as large as the desktop shows things,
// and opens the pane, as a click on its icon would.

#import <AppKit/AppKit.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

/* What this takes for granted of the settings application; where it does not hold, the icon is there to be clicked. */
@interface NSObject (QuorelSettingsApplication)
- (NSString *)iconLabel;
- (void)clickOnIconOfPane:(id)pane;
@end

@interface QuorelOpener : NSObject
@end

static id findPane(NSView *view) {
    if ([NSStringFromClass([view class]) isEqual:@"SPIcon"]) {
        id pane = [view valueForKey:@"pane"];
        return [[pane iconLabel] isEqual:@"Quorel"] ? pane : nil;
    }
    for (NSView *subview in [view subviews]) {
        if (id pane = findPane(subview)) return pane;
    }
    return nil;
}

/* How large the desktop shows things, in quarters, by the dots per inch that desktops tell X programs. */
static double desktopScale() {
    constexpr double kUsual = 96;
    Display *display = XOpenDisplay(nullptr);
    if (!display) return 1;
    const char *text = XGetDefault(display, "Xft", "dpi");
    const double scale = text ? std::round(std::atof(text) / kUsual * 4) / 4 : 1;
    XCloseDisplay(display);
    return std::clamp(scale, 1.0, 4.0);
}

@implementation QuorelOpener

+ (void)load {
    // The framework knows nothing of the desktop's scale. What the user has told it comes first.
    NSString *scale = [NSString stringWithFormat:@"%.2f", desktopScale()];
    [[NSUserDefaults standardUserDefaults] registerDefaults:@{@"GSScaleFactor" : scale}];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(launched:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
}

+ (void)launched:(NSNotification *)notification {
    // The host is told of the same event; let it come first.
    [self performSelector:@selector(open) withObject:nil afterDelay:0];
}

+ (void)open {
    id host = [NSApp delegate];
    if (![host respondsToSelector:@selector(clickOnIconOfPane:)]) return;
    for (NSWindow *window in [NSApp windows]) {
        if (id pane = findPane([window contentView])) {
            [host clickOnIconOfPane:pane];
            return;
        }
    }
}

@end
