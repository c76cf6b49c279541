#import "appkit/Interface.h"

#import "appkit/Resources.h"

static NSString *localized(NSString *key, NSBundle *bundle) {
    return [key length] ? VXLocalized(key, bundle) : key;
}

static void localizeToolTip(NSView *view, NSBundle *bundle) {
    NSString *toolTip = localized([view toolTip], bundle);
    if (![toolTip length]) return;
    [view setToolTip:toolTip];
    if ([view respondsToSelector:@selector(setAccessibilityLabel:)]) {
        [view performSelector:@selector(setAccessibilityLabel:) withObject:toolTip];
    }
}

static void localizeTable(NSTableView *table, NSBundle *bundle) {
    localizeToolTip([table headerView], bundle);
    for (NSTableColumn *column in [table tableColumns]) {
        NSCell *header = [column headerCell];
        [header setStringValue:localized([header stringValue], bundle)];
    }
}

void VXLocalizeView(NSView *view, NSBundle *bundle) {
    localizeToolTip(view, bundle);
#ifdef GNUSTEP
    // The rounded bezel of the interface files is the usual one elsewhere; here it would stand out from the host's.
    if ([view isKindOfClass:[NSButton class]] && [(NSButton *)view bezelStyle] == NSRoundedBezelStyle) {
        [(NSButton *)view setBezelStyle:NSRegularSquareBezelStyle];
    }
    // The menu that comes with an interface file is endlessly wide once another item than the first was chosen.
    if ([view isKindOfClass:[NSPopUpButton class]]) {
        [(NSPopUpButton *)view setMenu:[[[NSMenu alloc] init] autorelease]];
    }
#endif
    if ([view isKindOfClass:[NSPopUpButton class]]) return;  // its items are the business of code
    if ([view isKindOfClass:[NSButton class]]) {
        NSButton *button = (NSButton *)view;
        [button setTitle:localized([button title], bundle)];
    } else if ([view isKindOfClass:[NSTextField class]]) {
        NSTextField *label = (NSTextField *)view;  // the interface files have no others
        [label setStringValue:localized([label stringValue], bundle)];
        [label setEditable:NO];
        [label setSelectable:NO];
    } else if ([view isKindOfClass:[NSTableView class]]) {
        localizeTable((NSTableView *)view, bundle);
    } else {
        if ([view isKindOfClass:[NSBox class]]) {
            NSBox *box = (NSBox *)view;
            [box setTitle:localized([box title], bundle)];
        }
        for (NSView *subview in [view subviews]) VXLocalizeView(subview, bundle);
    }
}

void VXLocalizeWindow(NSWindow *window, NSBundle *bundle) {
    [window setTitle:localized([window title], bundle)];
    VXLocalizeView([window contentView], bundle);
}

void VXSetButtonImages(NSButton *button, NSString *name, NSString *alternateName, NSBundle *bundle) {
    [button setImage:VXImageNamed(name, bundle)];
    if (alternateName) [button setAlternateImage:VXImageNamed(alternateName, bundle)];
    [button setImagePosition:NSImageOnly];
}

void VXLetGoOfButton(id sender) {
    if (![sender isKindOfClass:[NSButton class]]) return;
    [(NSButton *)sender highlight:NO];
    [(NSButton *)sender display];
}

NSArray *VXKeyViewsIn(NSView *view) {
    const bool fixed = [view isKindOfClass:[NSTextField class]] && ![(NSTextField *)view isEditable];
    const bool takesKeys = [view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSTextView class]];
    if (takesKeys)
        return fixed || [view isKindOfClass:[NSScroller class]] ? [NSArray array] : [NSArray arrayWithObject:view];
    NSMutableArray *keyViews = [NSMutableArray array];
    for (NSView *subview in [view subviews]) [keyViews addObjectsFromArray:VXKeyViewsIn(subview)];
    return keyViews;
}

void VXLinkKeyViews(NSArray *views) {
    NSView *previous = [views lastObject];
    for (NSView *view in views) {
        [previous setNextKeyView:view];
        previous = view;
    }
}
