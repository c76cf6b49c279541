#include <algorithm>

#import "modules/Controls.h"
#include "modules/Parameters.h"
#import "modules/VXPlugIn.h"

using namespace quorel::parameters;

/* Lines are ended by Return, which a button has elsewhere; Tab is the keyboard's way on, as elsewhere. */
@interface VXMessageTextView : NSTextView
@end

@implementation VXMessageTextView

- (BOOL)performKeyEquivalent:(NSEvent *)event {
    if ([[self window] firstResponder] != self || ![[event characters] isEqual:@"\r"]) return NO;
    [self insertNewline:nil];
    return YES;
}

- (void)insertTab:(id)sender {
    [[self window] selectKeyViewFollowingView:self];
}

- (void)insertBacktab:(id)sender {
    [[self window] selectKeyViewPrecedingView:self];
}

@end

/* Shows a title and a text to whoever uses the computer. */
@interface VXMessagePlugIn : VXPlugIn {
    NSView *_setupView;
    NSTextField *_title;
    VXMessageTextView *_text;
}
@end

@implementation VXMessagePlugIn

- (void)dealloc {
    [_setupView release];
    [_title release];
    [_text release];
    [super dealloc];
}

- (void)loadNib {
    if (_setupView) return;
    static const CGFloat kTextHeight = 66;
    _setupView = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, VXOptionsWidth, VXLineHeight + kTextHeight)];
    _title = [[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 0, 22)];
    [_title setToolTip:VXLocalized(@"Titre du message", self)];

    NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 0, kTextHeight - 6)] autorelease];
    [scroll setBorderType:NSBezelBorder];
    [scroll setHasVerticalScroller:YES];
    [scroll setAutohidesScrollers:YES];
    _text = [[VXMessageTextView alloc] initWithFrame:NSZeroRect];
    [_text setRichText:NO];
    [_text setAutoresizingMask:NSViewWidthSizable];
    [_text setToolTip:VXLocalized(@"Texte du message", self)];
    [scroll setDocumentView:_text];

    NSTextField *titleLabel = VXLabel(VXLocalized(@"Titre", self));
    NSTextField *textLabel = VXLabel(VXLocalized(@"Texte", self));
    for (NSTextField *label in @[ titleLabel, textLabel ])
        [label setFrameSize:NSMakeSize(std::max(NSWidth([titleLabel frame]), NSWidth([textLabel frame])),
                                       NSHeight([label frame]))];
    VXAddLine(_setupView, kTextHeight, VXLineHeight, @[ titleLabel, _title ], _title);
    VXAddLine(_setupView, 0, kTextHeight, @[ textLabel, scroll ], scroll);
    [_text setFrame:NSMakeRect(0, 0, [scroll contentSize].width, [scroll contentSize].height)];
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _setupView;
}

- (void)complete:(NSMutableDictionary *)parameters {
    [super complete:parameters];
    for (std::string_view key : {kTitle, kText})
        [parameters setObject:VXTextParameter(parameters, VXKey(key)) forKey:VXKey(key)];
}

- (void)fillSetupInterfaceFromParameters {
    [_title setStringValue:VXTextParameter(_parameters, VXKey(kTitle))];
    [_text setString:VXTextParameter(_parameters, VXKey(kText))];
}

- (void)fillParametersFromSetupInterface {
    if (!_setupView) return;
    [_parameters setObject:[_title stringValue] forKey:VXKey(kTitle)];
    [_parameters setObject:[[[_text string] copy] autorelease] forKey:VXKey(kText)];
}

- (NSString *)actionString {
    NSString *said = VXTextParameter(_parameters, VXKey(kTitle));
    if ([said length] == 0) said = VXTextParameter(_parameters, VXKey(kText));
    if ([said length] == 0) return VXLocalized(@"N'affiche rien", self);
    return [NSString stringWithFormat:VXLocalized(@"Affiche \"%@\"", self), VXOneLine(said)];
}

@end
