#import "modules/Controls.h"
#include "modules/Parameters.h"
#import "modules/VXPlugIn.h"

using namespace quorel::parameters;

/* Opens an application, a file or a web address in the session of whoever uses the computer. */
@interface VXOpenPlugIn : VXPlugIn {
    NSView *_setupView;
    NSTextField *_target;
}
@end

@implementation VXOpenPlugIn

- (void)dealloc {
    [_setupView release];
    [_target release];
    [super dealloc];
}

- (void)loadNib {
    if (_setupView) return;
    static const CGFloat kHelpHeight = 20;
    _setupView = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, VXOptionsWidth, VXLineHeight + kHelpHeight)];
    _target = [[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 0, 22)];
    [_target setToolTip:VXLocalized(@"Ce qui est ouvert", self)];
    NSButton *choose = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [choose setTitle:VXLocalized(@"Choisir", self)];
    [choose setToolTip:VXLocalized(@"Choisir une application ou un fichier", self)];
    [choose setTarget:self];
    [choose setAction:@selector(choose:)];
    [choose sizeToFit];
    VXAddLine(_setupView, kHelpHeight, VXLineHeight, @[ VXLabel(VXLocalized(@"Ouvrir", self)), _target, choose ],
              _target);
    VXAddLine(_setupView, 0, kHelpHeight, @[ VXLabel(VXLocalized(@"Aide", self)) ], nil);
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _setupView;
}

- (void)choose:(id)sender {
    NSString *folder = [[_target stringValue] stringByDeletingLastPathComponent];
    NSOpenPanel *panel = [NSOpenPanel openPanel];
    [panel setDirectory:[folder isAbsolutePath] ? folder : @"/usr/share/applications"];
    [panel setCanChooseDirectories:YES];
    [panel setAllowsMultipleSelection:NO];
    if ([panel runModal] == NSOKButton) [_target setStringValue:[[panel filenames] objectAtIndex:0]];
}

- (void)complete:(NSMutableDictionary *)parameters {
    [super complete:parameters];
    [parameters setObject:VXTextParameter(parameters, VXKey(kTarget)) forKey:VXKey(kTarget)];
}

- (void)fillSetupInterfaceFromParameters {
    [_target setStringValue:VXTextParameter(_parameters, VXKey(kTarget))];
}

- (void)fillParametersFromSetupInterface {
    if (_target) [_parameters setObject:[_target stringValue] forKey:VXKey(kTarget)];
}

/* Of a file its name does. */
- (NSString *)actionString {
    NSString *target = VXOneLine(VXTextParameter(_parameters, VXKey(kTarget)));
    if ([target length] == 0) return VXLocalized(@"N'ouvre rien", self);
    return [target hasPrefix:@"/"] || [target hasPrefix:@"~/"] ? [target lastPathComponent] : target;
}

@end
