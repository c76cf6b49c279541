#import "appkit/VXTimeControl.h"

#include <objc/runtime.h>

#include "appkit/CalendarDates.h"
#include "appkit/Resources.h"

namespace {

constexpr CGFloat kFieldHeight = 22;
constexpr CGFloat kDigitsWidth = 30;
constexpr CGFloat kColonWidth = 8;
constexpr CGFloat kStepperWidth = 19;
constexpr CGFloat kGap = 4;
constexpr CGFloat kBezel = 3;

constexpr int kHours = 24;
constexpr int kMinutes = 60;
constexpr int kNone = -1;

int wrapped(int value, int count) {
    return (value % count + count) % count;
}

NSString *twoDigits(int value) {
    return [NSString stringWithFormat:@"%02d", value];
}

NSString *trimmed(NSString *text) {
    return [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
}

/// The number that one or two digits make, if it lies between the bounds.
int numberIn(NSString *text, int least, int most) {
    text = trimmed(text);
    if ([text length] < 1 || [text length] > 2) return kNone;
    int number = 0;
    for (NSUInteger i = 0; i < [text length]; ++i) {
        const unichar digit = [text characterAtIndex:i];
        if (digit < '0' || digit > '9') return kNone;
        number = number * 10 + (digit - '0');
    }
    return number >= least && number <= most ? number : kNone;
}

/// Which of the halves begins with the text, if only one does.
int halfIn(NSString *text, NSArray *halves) {
    text = trimmed(text);
    int found = kNone;
    for (int half = 0; half < 2; ++half) {
        const NSRange start = [[halves objectAtIndex:static_cast<NSUInteger>(half)]
            rangeOfString:text
                  options:NSCaseInsensitiveSearch | NSAnchoredSearch];
        if (start.location == NSNotFound || start.length == 0) continue;
        if (found != kNone) return kNone;
        found = half;
    }
    return found;
}

/// The names of morning and afternoon where the user's short time has them, else nil. There the same digits do not
/// tell one from three in the afternoon: what is left without the digits differs.
NSArray *halvesOfTheDay() {
    NSDateFormatter *formatter = quorel::appkit::timeFormatter();
    const auto withoutDigits = [&](int hour) {
        NSString *text = [formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:hour * 3600.0]];
        return [[text componentsSeparatedByCharactersInSet:[NSCharacterSet decimalDigitCharacterSet]]
            componentsJoinedByString:@""];
    };
    if ([withoutDigits(10) isEqual:withoutDigits(22)]) return nil;
    NSString *morning = [formatter AMSymbol];
    NSString *afternoon = [formatter PMSymbol];
    if (![morning length] || ![afternoon length] || [morning isEqual:afternoon]) return @[ @"AM", @"PM" ];
    return @[ morning, afternoon ];
}

}  // namespace

@interface VXTimeControl (VXTimeField)
- (void)fieldUsed:(VXTimeField *)field;
@end

/* One part of the time. It tells the control when it gets the keyboard. */
@interface VXTimeField : NSTextField
@end

@implementation VXTimeField

- (BOOL)becomeFirstResponder {
    [(VXTimeControl *)[self superview] fieldUsed:self];
    return [super becomeFirstResponder];
}

@end

/* A click leaves the keyboard where it is. */
@interface VXTimeStepper : NSStepper
@end

@implementation VXTimeStepper

- (BOOL)acceptsFirstResponder {
    return NO;
}

@end

@implementation VXTimeControl

+ (Class)cellClass {
    return [NSActionCell class];
}

- (VXTimeField *)addFieldOfWidth:(CGFloat)width at:(CGFloat)x toolTip:(NSString *)toolTip {
    VXTimeField *field = [[VXTimeField alloc] initWithFrame:[self placeOfWidth:width at:x]];
    [field setAlignment:NSCenterTextAlignment];
    [field setToolTip:toolTip];
    [field setDelegate:(id)self];
    [self addSubview:field];
    return field;
}

- (NSRect)placeOfWidth:(CGFloat)width at:(CGFloat)x {
    return NSMakeRect(x, (NSHeight([self bounds]) - kFieldHeight) / 2, width, kFieldHeight);
}

- (void)addParts {
    _halves = [halvesOfTheDay() retain];
    NSBundle *bundle = [NSBundle bundleForClass:[VXTimeControl class]];

    CGFloat x = 0;
    _hourField = [self addFieldOfWidth:kDigitsWidth at:x toolTip:VXLocalized(@"Heures", bundle)];
    x += kDigitsWidth;
    // Without a bezel its text stands higher.
    const NSRect colonPlace = NSOffsetRect([self placeOfWidth:kColonWidth at:x], 0, -kBezel);
    _colon = [[NSTextField alloc] initWithFrame:colonPlace];
    [_colon setStringValue:@":"];
    [_colon setAlignment:NSCenterTextAlignment];
    [_colon setEditable:NO];
    [_colon setSelectable:NO];
    [_colon setBezeled:NO];
    [_colon setDrawsBackground:NO];
    [self addSubview:_colon];
    x += kColonWidth;
    _minuteField = [self addFieldOfWidth:kDigitsWidth at:x toolTip:VXLocalized(@"Minutes", bundle)];
    x += kDigitsWidth + kGap;
    if (_halves) {
        NSDictionary *style = @{NSFontAttributeName : [_hourField font]};
        CGFloat width = 0;
        for (NSString *half in _halves) width = MAX(width, [half sizeWithAttributes:style].width);
        width = ceil(width) + 12;
        _halfField = [self addFieldOfWidth:width at:x toolTip:VXLocalized(@"Matin ou apres-midi", bundle)];
        x += width + kGap;
    }

    // Stands between down and up, and is put back there after every step.
    _stepper = [[VXTimeStepper alloc] initWithFrame:[self placeOfWidth:kStepperWidth at:x]];
    [_stepper setMinValue:-1];
    [_stepper setMaxValue:1];
    [_stepper setValueWraps:NO];
    [_stepper setAutorepeat:NO];  // repeats at once where it does: one click would be two steps
    [_stepper setToolTip:VXLocalized(@"Avancer ou reculer", bundle)];
    [_stepper setTarget:self];
    [_stepper setAction:@selector(stepperClicked:)];
    [self addSubview:_stepper];

    // The control itself is passed over, forwards and backwards. An interface file may have said what follows it.
    NSView *next = [self nextKeyView];
    [super setNextKeyView:_hourField];
    [_hourField setNextKeyView:_minuteField];
    if (_halfField) [_minuteField setNextKeyView:_halfField];
    [self setNextKeyView:next];
    _lastUsed = _hourField;
    [self setEnabled:[self isEnabled]];
    [self setDateValue:nil];
}

- (id)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) [self addParts];
    return self;
}

- (id)initWithCoder:(NSCoder *)coder {
    if ((self = [super initWithCoder:coder])) [self addParts];
    return self;
}

- (void)dealloc {
    for (NSTextField *field in [self fields]) [field setDelegate:nil];
    [_stepper setTarget:nil];
    [_date release];
    [_timeZone release];
    [_halves release];
    [_hourField release];
    [_minuteField release];
    [_halfField release];
    [_colon release];
    [_stepper release];
    [super dealloc];
}

- (NSArray *)fields {
    return [NSArray arrayWithObjects:_hourField, _minuteField, _halfField, nil];
}

- (void)drawRect:(NSRect)rect {
}

- (void)setEnabled:(BOOL)enabled {
    [super setEnabled:enabled];
    for (NSTextField *field in [self fields]) [field setEnabled:enabled];
    [_stepper setEnabled:enabled];
    [_colon setTextColor:enabled ? [NSColor controlTextColor] : [NSColor disabledControlTextColor]];
}

- (id)delegate {
    return _delegate;
}

- (void)setDelegate:(id)delegate {
    _delegate = delegate;
}

/* --- Keyboard --- */

- (BOOL)acceptsFirstResponder {
    return [self isEnabled];
}

- (BOOL)canBecomeKeyView {
    return NO;
}

- (BOOL)becomeFirstResponder {
    return [[self window] makeFirstResponder:_hourField];
}

/* What the keyboard is in; nil when it is elsewhere. */
- (VXTimeField *)fieldBeingEdited {
    return [_lastUsed currentEditor] ? _lastUsed : nil;
}

- (BOOL)commitEditing {
    VXTimeField *field = [self fieldBeingEdited];
    if (!field || [self takeOver:field]) return YES;
    [self refuse:field];
    return NO;
}

- (void)setNextKeyView:(NSView *)view {
    if (_hourField) {
        [[[self fields] lastObject] setNextKeyView:view];
    } else {
        [super setNextKeyView:view];
    }
}

/* --- Date --- */

- (NSTimeZone *)timeZone {
    return _timeZone;
}

- (void)setTimeZone:(NSTimeZone *)timeZone {
    [_timeZone autorelease];
    _timeZone = [timeZone retain];
}

- (NSCalendar *)calendar {
    NSCalendar *calendar = [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
    [calendar setTimeZone:_timeZone ? _timeZone : [NSTimeZone localTimeZone]];
    return calendar;
}

- (NSDateComponents *)componentsOfDate {
    return [[self calendar] components:NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit |
                                       NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit
                              fromDate:_date];
}

- (NSDate *)dateValue {
    [self commitEditing];
    NSDateComponents *components = [self componentsOfDate];
    if ([components hour] == _hour && [components minute] == _minute) return [[_date retain] autorelease];
    [components setHour:_hour];
    [components setMinute:_minute];
    return [[self calendar] dateFromComponents:components];
}

- (void)setDateValue:(NSDate *)date {
    [_date autorelease];
    _date = [(date ? date : [NSDate date]) copy];
    NSDateComponents *components = [self componentsOfDate];
    _hour = date ? static_cast<int>([components hour]) : 0;
    _minute = date ? static_cast<int>([components minute]) : 0;
    [self show];
}

/* --- Fields --- */

- (NSString *)textOfField:(NSTextField *)field {
    if (field == _minuteField) return twoDigits(_minute);
    if (field == _halfField) return [_halves objectAtIndex:_hour < 12 ? 0 : 1];
    if (!_halves) return twoDigits(_hour);
    return twoDigits(_hour % 12 == 0 ? 12 : _hour % 12);
}

- (void)show {
    for (NSTextField *field in [self fields]) [field setStringValue:[self textOfField:field]];
}

/* NO, and nothing changed, when the text of the field is not a value of it. */
- (BOOL)takeOver:(NSTextField *)field {
    NSText *editor = [field currentEditor];
    NSString *text = editor ? [editor string] : [field stringValue];
    if (field == _minuteField) {
        const int minute = numberIn(text, 0, kMinutes - 1);
        if (minute == kNone) return NO;
        _minute = minute;
    } else if (field == _halfField) {
        const int half = halfIn(text, _halves);
        if (half == kNone) return NO;
        _hour = _hour % 12 + 12 * half;
    } else {
        const int hour = numberIn(text, 0, kHours - 1);
        if (hour == kNone) return NO;
        const bool ofHalf = _halves && hour >= 1 && hour <= 12;
        _hour = ofHalf ? hour % 12 + (_hour < 12 ? 0 : 12) : hour;
    }
    return YES;
}

- (void)fieldUsed:(VXTimeField *)field {
    _lastUsed = field;
}

/* What is being typed is taken over first; where it cannot be, that is all that happens. */
- (void)step:(int)by {
    if (![self commitEditing]) return;
    VXTimeField *field = [self fieldBeingEdited];
    if (_lastUsed == _minuteField) {
        _minute = wrapped(_minute + by, kMinutes);
    } else {
        _hour = wrapped(_hour + (_lastUsed == _halfField ? 12 : by), kHours);
    }
    [self show];
    [field selectText:self];
}

- (void)stepperClicked:(NSStepper *)stepper {
    const int by = [stepper intValue];
    [stepper setIntValue:0];
    if (by) [self step:by];
}

- (void)refuse:(NSTextField *)field {
    NSBeep();
    [self putBack:field];
}

- (void)putBack:(NSTextField *)field {
    NSText *editor = [field currentEditor];
    [editor setString:[self textOfField:field]];
    [editor selectAll:self];
}

- (BOOL)control:(NSControl *)field textShouldEndEditing:(NSText *)editor {
    const BOOL valid = [self takeOver:(NSTextField *)field];
    if (!valid) [self putBack:(NSTextField *)field];  // the field beeps
    return valid;
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
    [self show];
}

- (BOOL)control:(NSControl *)field textView:(NSTextView *)editor doCommandBySelector:(SEL)command {
    const bool up = sel_isEqual(command, @selector(moveUp:));
    if (!up && !sel_isEqual(command, @selector(moveDown:))) return NO;
    [self step:up ? 1 : -1];
    return YES;
}

@end
