#import <AppKit/AppKit.h>

/* A whole number between bounds: a field to type into, and two arrows. Main thread. */
@interface VXNumberControl : NSView {
    NSTextField *_field;
    NSStepper *_stepper;
    int _number;
    int _least;
    int _most;
}

/* Shows the least at first. */
- (id)initWithLeast:(int)least most:(int)most toolTip:(NSString *)toolTip;

/* Always within the bounds: a number beyond them is brought to the nearest one, anything else leaves the last one.
 * Takes over what is being typed. */
- (int)number;
- (void)setNumber:(int)number;
- (void)setEnabled:(BOOL)enabled;

@end
