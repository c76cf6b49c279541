#import "modules/Idle/VXIdleOptionsView.h"

#include <algorithm>

#include "model/ActionParameters.h"
#import "modules/Controls.h"

using namespace quorel::parameters;

@implementation VXIdleOptionsView

- (id)initWithCheckBoxTitle:(NSString *)title unit:(NSString *)unit toolTip:(NSString *)toolTip {
    if (!(self = [super initWithFrame:NSMakeRect(0, 0, VXOptionsWidth, VXLineHeight)])) return nil;

    _checkBox = [[NSButton alloc] initWithFrame:NSZeroRect];
    [_checkBox setButtonType:NSSwitchButton];
    [_checkBox setTitle:title];
    [_checkBox setTarget:self];
    [_checkBox setAction:@selector(checkBoxChanged:)];

    _field = [[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 44, 22)];
    [_field setAlignment:NSRightTextAlignment];
    [_field setToolTip:toolTip];
    [_field setDelegate:(id)self];

    _stepper = [[NSStepper alloc] initWithFrame:NSMakeRect(0, 0, 19, 24)];
    [_stepper setMinValue:kLeastIdleMinutes];
    [_stepper setMaxValue:kMostIdleMinutes];
    [_stepper setValueWraps:NO];
    [_stepper setAutorepeat:NO];  // repeats at once where it does: one click would be two steps
    [_stepper setToolTip:toolTip];
    [_stepper setTarget:self];
    [_stepper setAction:@selector(stepperChanged:)];

    [_checkBox sizeToFit];
    VXAddLine(self, 0, VXLineHeight, @[ _checkBox, _field, _stepper, VXLabel(unit) ], nil);
    [self setMinutes:kLeastIdleMinutes];
    return self;
}

- (void)dealloc {
    [_field setDelegate:nil];
    [_checkBox release];
    [_field release];
    [_stepper release];
    [super dealloc];
}

- (BOOL)onlyWhenIdle {
    return [_checkBox state] != NSOffState;
}

- (void)setOnlyWhenIdle:(BOOL)idle {
    [_checkBox setState:idle ? NSOnState : NSOffState];
    [self checkBoxChanged:nil];
}

- (int)minutes {
    int typed = 0;
    if ([[NSScanner scannerWithString:[_field stringValue]] scanInt:&typed]) _minutes = typed;
    [self setMinutes:_minutes];
    return _minutes;
}

- (void)setMinutes:(int)minutes {
    _minutes = std::clamp(minutes, kLeastIdleMinutes, kMostIdleMinutes);
    [_field setStringValue:[NSString stringWithFormat:@"%d", _minutes]];
    [_stepper setIntValue:_minutes];
}

- (void)checkBoxChanged:(id)sender {
    [_field setEnabled:[self onlyWhenIdle]];
    [_stepper setEnabled:[self onlyWhenIdle]];
}

/* From what is being typed, which the stepper does not know. */
- (void)stepperChanged:(id)sender {
    const int by = [_stepper intValue] - _minutes;
    [self setMinutes:[self minutes] + by];
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
    [self minutes];
}

@end
