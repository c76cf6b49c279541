#import <AppKit/AppKit.h>

@class VXTimeField;

/* Edits a time of day: hours, minutes, AM or PM where the user's locale has them, and a stepper for the field last
 * used. For platforms whose date picker cannot; it answers to the same messages. Main thread.
 *
 * Digits are typed, Up and Down step and wrap within the field. Where hours are told by halves of the day, an hour of
 * the 24 that is none of the 12 is taken for what it is. What is no hour or no minute is refused when the field is
 * left: it beeps and shows its last value again. Return and Escape stay with the window's buttons. No action is sent.
 */
@interface VXTimeControl : NSControl {
    NSDate *_date;
    NSTimeZone *_timeZone;
    int _hour;
    int _minute;
    NSArray *_halves;  // what the user's locale calls them; nil with 24 hours
    VXTimeField *_hourField;
    VXTimeField *_minuteField;
    VXTimeField *_halfField;
    VXTimeField *_lastUsed;
    NSTextField *_colon;
    NSStepper *_stepper;
    id _delegate;
}

/* The date last set, at the time shown; its second is kept. What is being typed counts if it is valid. */
- (NSDate *)dateValue;
/* Takes over what is being typed. NO, and it is refused as above, when that is no value: whoever saves waits. */
- (BOOL)commitEditing;
/* Shows the time of the date, or midnight of today for nil. */
- (void)setDateValue:(NSDate *)date;

/* The zone in which a date has its hour and minute; nil, as at first, for the local one. Set it before the date. */
- (NSTimeZone *)timeZone;
- (void)setTimeZone:(NSTimeZone *)timeZone;

/* Not retained, and sent nothing. */
- (id)delegate;
- (void)setDelegate:(id)delegate;

@end
