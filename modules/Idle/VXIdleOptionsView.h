#import <AppKit/AppKit.h>

/* A check box and a number of minutes, which counts only while the box is ticked; one line of controls. */
@interface VXIdleOptionsView : NSView {
    NSButton *_checkBox;
    NSTextField *_field;
    NSStepper *_stepper;
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
