/*
 * The class of a module that shows its options in a view of its own: says a message so many times. It shows every part
 * of the contract and uses nothing of the product but its public header. The program is that of the folder beside it.
 */
#import <Quorel/VXPrefPanePlugInProtocol.h>

/* Keys of the parameters. They end up in the user's preferences: never rename them. */
static NSString *const MessageKey = @"Message";
static NSString *const TimesKey = @"Times";
static NSString *const NeedsStartupKey = @"Needs Startup";
static NSString *const NeedsWakeUpKey = @"Needs Wake Up";

enum { MostTimes = 10 };

static NSString *Localized(NSString *key);

@interface SayMessagePlugIn : NSObject <VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> {
    NSMutableDictionary *_parameters; /* always complete, and every value of the right kind */
    NSView *_setupView;
    NSTextField *_message;
    NSPopUpButton *_times;
    NSTextField *_note;
}
@end

@implementation SayMessagePlugIn

+ (BOOL)initializeClass:(NSBundle *)bundle {
    return bundle != nil;
}

+ (void)terminateClass {
}

- (id)init {
    if ((self = [super init])) [self setParameters:nil];
    return self;
}

- (void)dealloc {
    [_parameters release];
    [_setupView release]; /* its subviews go with it */
    [super dealloc];
}

/* --- Who it is --- */

- (BOOL)isBaseModule {
    return NO;
}

- (NSString *)pluginIdentifier {
    return @"org.example.SayMessage";
}

- (NSString *)pluginName {
    return Localized(@"Say a message");
}

/* --- Parameters --- */

- (NSDictionary *)defaultParameters {
    return [NSDictionary dictionaryWithObjectsAndKeys:Localized(@"Hello"), MessageKey, [NSNumber numberWithInt:1],
                                                      TimesKey, [NSNumber numberWithBool:NO], NeedsStartupKey,
                                                      [NSNumber numberWithBool:YES], NeedsWakeUpKey, nil];
}

- (NSDictionary *)parameters {
    return [[_parameters copy] autorelease];
}

/* They come out of a file, so anything may stand there. */
- (void)setParameters:(NSDictionary *)parameters {
    NSMutableDictionary *own = [[self defaultParameters] mutableCopy];
    if ([parameters isKindOfClass:[NSDictionary class]]) {
        id message = [parameters objectForKey:MessageKey];
        id times = [parameters objectForKey:TimesKey];
        id startup = [parameters objectForKey:NeedsStartupKey];
        if ([message isKindOfClass:[NSString class]]) [own setObject:message forKey:MessageKey];
        if ([times isKindOfClass:[NSNumber class]]) {
            int count = MAX(1, MIN(MostTimes, [times intValue]));
            [own setObject:[NSNumber numberWithInt:count] forKey:TimesKey];
        }
        if ([startup isKindOfClass:[NSNumber class]]) {
            [own setObject:[NSNumber numberWithBool:[startup boolValue]] forKey:NeedsStartupKey];
        }
    }
    [_parameters release];
    _parameters = own;
}

- (NSString *)actionString {
    return [NSString stringWithFormat:Localized(@"Says \"%@\", times: %d"), [_parameters objectForKey:MessageKey],
                                      [[_parameters objectForKey:TimesKey] intValue]];
}

/* --- Flags: the computer is always woken up; whether it is started up is the user's choice --- */

- (BOOL)needsWakeUp {
    return YES;
}

- (void)setNeedsWakeUp:(BOOL)needs {
    /* Ignoring it is how a module says that this flag is fixed. */
}

- (BOOL)needsWakeUpByDefault {
    return YES;
}

- (BOOL)needsStartup {
    return [[_parameters objectForKey:NeedsStartupKey] boolValue];
}

- (void)setNeedsStartup:(BOOL)needs {
    [_parameters setObject:[NSNumber numberWithBool:needs] forKey:NeedsStartupKey];
}

- (BOOL)needsStartupByDefault {
    return NO;
}

/* --- Options view --- */

- (NSTextField *)addLabel:(NSString *)text frame:(NSRect)frame {
    NSTextField *label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [label setStringValue:text];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [_setupView addSubview:label];
    return label;
}

- (void)loadNib {
    int times;

    if (_setupView) return;
    _setupView = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 440, 84)];

    [self addLabel:Localized(@"Message:") frame:NSMakeRect(0, 55, 90, 20)];
    _message = [[[NSTextField alloc] initWithFrame:NSMakeRect(94, 56, 336, 22)] autorelease];
    [_message setToolTip:Localized(@"What is said")];
    [_setupView addSubview:_message];

    [self addLabel:Localized(@"Times:") frame:NSMakeRect(0, 26, 90, 20)];
    _times = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(94, 27, 70, 22) pullsDown:NO] autorelease];
    for (times = 1; times <= MostTimes; ++times) {
        [_times addItemWithTitle:[NSString stringWithFormat:@"%d", times]];
    }
    [_times setToolTip:Localized(@"How many times it is said")];
    [_setupView addSubview:_times];

    [_setupView setNextKeyView:_message];
    [_message setNextKeyView:_times];
    _note = [self addLabel:@"" frame:NSMakeRect(0, 2, 440, 18)];
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _setupView;
}

- (void)fillSetupInterfaceFromParameters {
    [_message setStringValue:[_parameters objectForKey:MessageKey]];
    [_times selectItemAtIndex:[[_parameters objectForKey:TimesKey] intValue] - 1];
    [self checkboxAction:nil];
}

- (void)fillParametersFromSetupInterface {
    if (!_setupView) return;
    [_parameters setObject:[_message stringValue] forKey:MessageKey];
    [_parameters setObject:[NSNumber numberWithInt:(int)[_times indexOfSelectedItem] + 1] forKey:TimesKey];
}

/* The user may have just ticked the start-up box: the note says what follows from it. */
- (void)checkboxAction:(id)sender {
    [_note setStringValue:[self needsStartup] ? Localized(@"Is said even if the computer is off.")
                                              : Localized(@"Is not said if the computer is off.")];
}

@end

/* Texts lie in the module's own bundle, not in that of the program. */
static NSString *Localized(NSString *key) {
    return [[NSBundle bundleForClass:[SayMessagePlugIn class]] localizedStringForKey:key value:@"" table:nil];
}
