// Loaded into an AppKit program that is to be driven by synthetic input: tells, over a Unix socket, what is on its
// screen and where. One request a line ("look"), one line of JSON as the answer. Only looks, never touches.

#import <AppKit/AppKit.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

/* The settings application's icons know their panes. */
@interface NSObject (QuorelSettingsPane)
- (NSString *)iconLabel;
@end

@interface QuorelInspector : NSObject {
    NSString *_answer;
}
- (std::string)answer;
- (void)look:(id)unused;
@end

// A menu has no bounds until it is laid out.
static const CGFloat kFarAway = 1e6;

// In the pixels of the screen, from its top left.
static NSArray *pixels(NSRect onScreen) {
    const CGFloat top = NSMaxY([[NSScreen mainScreen] frame]) - NSMaxY(onScreen);
    NSMutableArray *numbers = [NSMutableArray array];
    for (const CGFloat number : {NSMinX(onScreen), top, NSWidth(onScreen), NSHeight(onScreen)}) {
        [numbers addObject:@(std::clamp(number, -kFarAway, kFarAway))];
    }
    return numbers;
}

static NSArray *pixels(NSRect rect, NSView *view) {
    NSRect place = [view convertRect:rect toView:nil];
    place.origin = [[view window] convertBaseToScreen:place.origin];
    return pixels(place);
}

// Whether a text takes more room than its cell leaves it. The frames round upwards.
static BOOL isCut(NSCell *cell, NSRect frame) {
    if ([cell isKindOfClass:[NSButtonCell class]]) return [cell cellSize].width > NSWidth(frame) + 1;
    return [[cell attributedStringValue] size].width > NSWidth([cell titleRectForBounds:frame]) + 1;
}

static BOOL hasFixedText(NSControl *control) {
    if ([control isKindOfClass:[NSTextField class]]) return ![(NSTextField *)control isEditable];
    return [control isKindOfClass:[NSButton class]];
}

// Whether what is around a view lets only a part of it be seen.
static BOOL isClipped(NSView *view) {
    const NSRect visible = [view visibleRect];
    return !NSIsEmptyRect(visible) && !NSEqualRects(visible, [view bounds]);
}

// The framework's own hash looks at the beginning alone.
static NSString *fingerprint(NSData *data) {
    const std::string_view bytes(static_cast<const char *>([data bytes]), [data length]);
    return [NSString stringWithFormat:@"%zx", std::hash<std::string_view>()(bytes)];
}

static id plain(id value) {
    if ([value isKindOfClass:[NSString class]] || [value isKindOfClass:[NSNumber class]]) return value;
    if ([value isKindOfClass:[NSDictionary class]]) {
        NSMutableDictionary *copy = [NSMutableDictionary dictionary];
        for (NSString *key in value) [copy setObject:plain([value objectForKey:key]) forKey:key];
        return copy;
    }
    return value ? [value description] : [NSNull null];
}

static NSDictionary *describeTable(NSTableView *table) {
    NSMutableArray *rows = [NSMutableArray array];
    NSMutableDictionary *headers = [NSMutableDictionary dictionary];
    NSArray *columns = [table tableColumns];
    for (NSInteger row = 0; row < [table numberOfRows]; ++row) {
        NSMutableDictionary *cells = [NSMutableDictionary dictionary];
        for (NSTableColumn *column in columns) {
            const NSInteger index = static_cast<NSInteger>([columns indexOfObject:column]);
            id value = [[table dataSource] tableView:table objectValueForTableColumn:column row:row];
            [cells setObject:@{
                @"value" : plain(value),
                @"enabled" : @([[column dataCellForRow:row] isEnabled]),
                @"frame" : pixels([table frameOfCellAtColumn:index row:row], table)
            }
                      forKey:[column identifier]];
        }
        [rows addObject:@{@"cells" : cells, @"selected" : @([table isRowSelected:row])}];
    }
    for (NSTableColumn *column in columns) {
        const NSInteger index = static_cast<NSInteger>([columns indexOfObject:column]);
        NSTableHeaderView *header = [table headerView];
        [headers setObject:@{
            @"title" : [[column headerCell] stringValue],
            @"cut" : @(isCut([column headerCell], [header headerRectOfColumn:index])),
            @"frame" : pixels([header headerRectOfColumn:index], header)
        }
                    forKey:[column identifier]];
    }
    return @{@"rows" : rows, @"headers" : headers};
}

static NSArray *describeMenu(NSMenuView *view) {
    NSMutableArray *items = [NSMutableArray array];
    NSArray *menuItems = [[view menu] itemArray];
    for (NSUInteger i = 0; i < [menuItems count]; ++i) {
        [items addObject:@{
            @"title" : [[menuItems objectAtIndex:i] title],
            @"frame" : pixels([view rectOfItemAtIndex:static_cast<NSInteger>(i)], view)
        }];
    }
    return items;
}

static NSDictionary *describe(NSView *view) {
    NSMutableDictionary *facts = [NSMutableDictionary dictionary];
    [facts setObject:NSStringFromClass([view class]) forKey:@"class"];
    [facts setObject:pixels([view bounds], view) forKey:@"frame"];
    if ([view toolTip]) [facts setObject:[view toolTip] forKey:@"toolTip"];
    if ([view isKindOfClass:[NSControl class]] && ![view isKindOfClass:[NSTableView class]]) {
        NSControl *control = (NSControl *)view;
        [facts setObject:@([control isEnabled]) forKey:@"enabled"];
        [facts setObject:@([[control window] firstResponder] == control || [control currentEditor]) forKey:@"focused"];
        if (hasFixedText(control)) {
            const BOOL cut = isCut([control cell], [control bounds]) || isClipped(control);
            [facts setObject:@(cut) forKey:@"cut"];
        }
        if ([control respondsToSelector:@selector(title)]) {
            [facts setObject:plain([(NSButton *)control title]) forKey:@"title"];
        }
        if ([control respondsToSelector:@selector(state)]) {
            [facts setObject:@([(NSButton *)control state]) forKey:@"state"];
        }
        if ([control isKindOfClass:[NSTextField class]]) {
            [facts setObject:[control stringValue] forKey:@"value"];
        }
        if ([control isKindOfClass:[NSImageView class]]) {
            [facts setObject:fingerprint([[(NSImageView *)control image] TIFFRepresentation]) forKey:@"image"];
        }
        if ([control isKindOfClass:[NSPopUpButton class]]) {
            NSPopUpButton *popUp = (NSPopUpButton *)control;
            [facts setObject:[popUp itemTitles] forKey:@"items"];
            [facts setObject:@([popUp indexOfSelectedItem]) forKey:@"selected"];
        }
    }
    if ([view isKindOfClass:[NSTextView class]] && ![(NSTextView *)view isFieldEditor]) {
        [facts setObject:@([[view window] firstResponder] == view) forKey:@"focused"];
        [facts setObject:[(NSTextView *)view string] forKey:@"value"];
    }
    if ([NSStringFromClass([view class]) isEqual:@"SPIcon"]) {
        [facts setObject:plain([[view valueForKey:@"pane"] iconLabel]) forKey:@"title"];
    }
    if ([view isKindOfClass:[NSBox class]]) [facts setObject:plain([(NSBox *)view title]) forKey:@"title"];
    if ([view isKindOfClass:[NSTableView class]]) [facts addEntriesFromDictionary:describeTable((NSTableView *)view)];
    if ([view isKindOfClass:[NSMenuView class]]) [facts setObject:describeMenu((NSMenuView *)view) forKey:@"menu"];
    return facts;
}

static void collect(NSView *view, NSMutableArray *found) {
    if ([view isHidden]) return;
    [found addObject:describe(view)];
    for (NSView *subview in [view subviews]) collect(subview, found);
}

@implementation QuorelInspector

- (std::string)answer {
    return std::string([_answer UTF8String]);
}

- (void)dealloc {
    [_answer release];
    [super dealloc];
}

- (void)look:(id)unused {
    NSMutableArray *windows = [NSMutableArray array];
    for (NSWindow *window in [NSApp windows]) {
        if (![window isVisible]) continue;
        NSMutableArray *views = [NSMutableArray array];
        NSView *content = [window contentView];
        collect([content superview] ? [content superview] : content, views);
        [windows addObject:@{
            @"title" : [window title] ? [window title] : @"",
            @"key" : @([window isKeyWindow]),
            @"main" : @([window isMainWindow]),
            @"modal" : @([NSApp modalWindow] == window),
            @"frame" : pixels([window frame]),
            @"views" : views
        }];
    }
    NSData *json = [NSJSONSerialization dataWithJSONObject:@{@"windows" : windows} options:0 error:NULL];
    _answer = [[NSString alloc] initWithData:json encoding:NSUTF8StringEncoding];
}

static void serve(int client) {
    std::string line;
    char c;
    while (read(client, &c, 1) == 1) {
        if (c != '\n') continue;
        @autoreleasepool {
            QuorelInspector *look = [[[QuorelInspector alloc] init] autorelease];
            NSArray *modes = @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
            [look performSelectorOnMainThread:@selector(look:) withObject:nil waitUntilDone:YES modes:modes];
            line = [look answer] + "\n";
        }
        for (std::size_t sent = 0; sent < line.size();) {
            const ssize_t size = send(client, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
            if (size <= 0) return;
            sent += static_cast<std::size_t>(size);
        }
    }
}

+ (void)load {
    const char *path = std::getenv("QUOREL_INSPECTOR");
    if (!path) return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    unlink(path);
    if (bind(server, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(server, 1) != 0) return;
    std::thread([server] {
        for (int client; (client = accept(server, nullptr, nullptr)) >= 0; close(client)) serve(client);
    }).detach();
}

@end
