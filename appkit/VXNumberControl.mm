#import "appkit/VXNumberControl.h"

#include <algorithm>

static const CGFloat kFieldHeight = 22;
static const CGFloat kStepperWidth = 19;
static const CGFloat kStepperHeight = 24;
static const CGFloat kGap = 2;

@implementation VXNumberControl

- (id)initWithLeast:(int)least most:(int)most toolTip:(NSString *)toolTip {
    const NSUInteger digits = [[NSString stringWithFormat:@"%d", most] length];
    const CGFloat fieldWidth = 20 + 8 * static_cast<CGFloat>(digits);
    if (!(self = [super initWithFrame:NSMakeRect(0, 0, fieldWidth + kGap + kStepperWidth, kStepperHeight)])) return nil;
    _least = least;
    _most = most;

    _field = [[NSTextField alloc]
        initWithFrame:NSMakeRect(0, (kStepperHeight - kFieldHeight) / 2, fieldWidth, kFieldHeight)];
    [_field setAlignment:NSRightTextAlignment];
    [_field setToolTip:toolTip];
    [_field setDelegate:(id)self];
    [self addSubview:_field];

    _stepper = [[NSStepper alloc] initWithFrame:NSMakeRect(fieldWidth + kGap, 0, kStepperWidth, kStepperHeight)];
    [_stepper setMinValue:least];
    [_stepper setMaxValue:most];
    [_stepper setValueWraps:NO];
    [_stepper setAutorepeat:NO];  // repeats at once where it does: one click would be two steps
    [_stepper setToolTip:toolTip];
    [_stepper setTarget:self];
    [_stepper setAction:@selector(stepperChanged:)];
    [self addSubview:_stepper];
    [self setNumber:least];
    return self;
}

- (void)dealloc {
    [_field setDelegate:nil];
    [_field release];
    [_stepper release];
    [super dealloc];
}

- (int)number {
    int typed = 0;
    if ([[NSScanner scannerWithString:[_field stringValue]] scanInt:&typed]) _number = typed;
    [self setNumber:_number];
    return _number;
}

- (void)setNumber:(int)number {
    _number = std::clamp(number, _least, _most);
    [_field setStringValue:[NSString stringWithFormat:@"%d", _number]];
    [_stepper setIntValue:_number];
}

- (void)setEnabled:(BOOL)enabled {
    [_field setEnabled:enabled];
    [_stepper setEnabled:enabled];
}

/* From what is being typed, which the stepper does not know. */
- (void)stepperChanged:(id)sender {
    const int by = [_stepper intValue] - _number;
    [self setNumber:[self number] + by];
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
    [self number];
}

@end
