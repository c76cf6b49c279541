#import "modules/Controls.h"
#import "modules/Idle/VXIdlePlugIn.h"
#include "modules/Parameters.h"

using namespace quorel::parameters;

enum { kShutsDown, kRestarts };  // items of the pop-up button

/* Shuts the computer down or restarts it, at once or when it has not been used for a while. */
@interface VXShutDownPlugIn : VXIdlePlugIn {
    NSView *_setupView;
    NSPopUpButton *_choice;
}
@end

@implementation VXShutDownPlugIn

- (void)dealloc {
    [_setupView release];
    [_choice release];
    [super dealloc];
}

- (void)loadNib {
    if (_setupView) return;
    [super loadNib];
    NSView *idleView = [super setupView];
    _setupView = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, VXOptionsWidth, 2 * VXLineHeight)];
    _choice = [[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 180, 22) pullsDown:NO];
    [_choice addItemWithTitle:VXLocalized(@"Eteindre", self)];
    [_choice addItemWithTitle:VXLocalized(@"Redemarrer", self)];
    [_choice setToolTip:VXLocalized(@"Ce que fait l'ordinateur", self)];
    VXAddLine(_setupView, VXLineHeight, VXLineHeight, @[ _choice ], nil);
    [_setupView addSubview:idleView];
    [self fillSetupInterfaceFromParameters];
}

- (NSView *)setupView {
    return _setupView;
}

- (void)complete:(NSMutableDictionary *)parameters {
    [super complete:parameters];
    [parameters setObject:@(VXFlagParameter(parameters, VXKey(kRestart))) forKey:VXKey(kRestart)];
}

- (BOOL)restarts {
    return VXFlagParameter(_parameters, VXKey(kRestart));
}

- (void)fillSetupInterfaceFromParameters {
    [super fillSetupInterfaceFromParameters];
    [_choice selectItemAtIndex:[self restarts] ? kRestarts : kShutsDown];
}

- (void)fillParametersFromSetupInterface {
    [super fillParametersFromSetupInterface];
    if (_choice) [_parameters setObject:@([_choice indexOfSelectedItem] == kRestarts) forKey:VXKey(kRestart)];
}

- (NSString *)actionString {
    NSString *idle = [super actionString];
    if (![self restarts]) return idle ? idle : VXLocalized(@"Eteint l'ordinateur", self);
    if (!idle) return VXLocalized(@"Redemarre l'ordinateur", self);
    return [NSString stringWithFormat:VXLocalized(@"Redemarre, %d min d'inactivite", self), [self idleMinutes]];
}

@end
