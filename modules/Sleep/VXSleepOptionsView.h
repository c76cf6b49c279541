#import <AppKit/AppKit.h>

/* The options of the sleep action: a check box and a number of minutes, which counts only while the box is ticked. */
@interface VXSleepOptionsView : NSView {
    NSButton *_checkBox;
    NSTextField *_field;
    NSStepper *_stepper;
    NSTextField *_unit;
    int _minutes;
}

- (id)initWithCheckBoxTitle:(NSString *)title unit:(NSString *)unit toolTip:(NSString *)toolTip;

- (BOOL)onlyWhenIdle;
- (void)setOnlyWhenIdle:(BOOL)idle;
/* Always in range: a number out of it is brought to the nearest bound, anything else leaves the last one. Takes over
 * what is being typed. */
- (int)minutes;
- (void)setMinutes:(int)minutes;

@end
