// Loaded into the settings application by ./run: opens the pane that a newcomer came to see, as a click on its icon
// would.

#import <AppKit/AppKit.h>

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

@implementation QuorelOpener

+ (void)load {
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
