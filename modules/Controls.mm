#import "modules/Controls.h"

/* The two arrows belong to the number on their left. */
static CGFloat gapBefore(NSView *control, NSView *previous) {
    if (!previous) return 0;
    return [control isKindOfClass:[NSStepper class]] ? 2 : 6;
}

NSTextField *VXLabel(NSString *text) {
    NSTextField *label = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [label setStringValue:text];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label sizeToFit];
    return label;
}

void VXAddLine(NSView *view, CGFloat bottom, CGFloat height, NSArray *controls, NSView *stretched) {
    NSView *previous = nil;
    CGFloat left = VXOptionsWidth;
    for (NSView *control in controls) {
        left -= gapBefore(control, previous) + NSWidth([control frame]);
        previous = control;
    }
    previous = nil;
    CGFloat x = 0;
    for (NSView *control in controls) {
        NSSize size = [control frame].size;
        if (control == stretched) size.width += left;
        x += gapBefore(control, previous);
        [control setFrame:NSMakeRect(x, bottom + (height - size.height) / 2, size.width, size.height)];
        [view addSubview:control];
        x += size.width;
        previous = control;
    }
}
