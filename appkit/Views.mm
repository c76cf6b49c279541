#import "appkit/Views.h"

namespace quorel::appkit {

namespace {

NSView *nativeViewOf(quorel::View &view) {
    auto *native = dynamic_cast<NativeView *>(&view);
    return native ? native->nativeView() : nil;
}

}  // namespace

std::vector<std::shared_ptr<quorel::View>> nativeSubviews(NSView *view) {
    std::vector<std::shared_ptr<quorel::View>> result;
    for (NSView *subview in [view subviews]) result.push_back(std::make_shared<View>(subview));
    return result;
}

void addNativeSubview(NSView *superview, quorel::View &subview) {
    if (NSView *native = nativeViewOf(subview)) [superview addSubview:native];
}

#ifdef GNUSTEP

// Views have no anchors here. A subview that fills its superview and follows its size is pinned at all four.
void pinAnchor(NSView *, Anchor anchor, quorel::View &other) {
    const bool horizontal = anchor == Anchor::Leading || anchor == Anchor::Trailing;
    NSView *native = nativeViewOf(other);
    [native setAutoresizingMask:[native autoresizingMask] | (horizontal ? NSViewWidthSizable : NSViewHeightSizable)];
}

#else

void pinAnchor(NSView *view, Anchor anchor, quorel::View &other) {
    NSView *native = nativeViewOf(other);
    [native setTranslatesAutoresizingMaskIntoConstraints:NO];
    switch (anchor) {
        case Anchor::Leading:
            [[[view leadingAnchor] constraintEqualToAnchor:[native leadingAnchor]] setActive:YES];
            break;
        case Anchor::Trailing:
            [[[view trailingAnchor] constraintEqualToAnchor:[native trailingAnchor]] setActive:YES];
            break;
        case Anchor::Top:
            [[[view topAnchor] constraintEqualToAnchor:[native topAnchor]] setActive:YES];
            break;
        case Anchor::Bottom:
            [[[view bottomAnchor] constraintEqualToAnchor:[native bottomAnchor]] setActive:YES];
            break;
    }
}

#endif

}  // namespace quorel::appkit
