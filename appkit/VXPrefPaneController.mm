#import "appkit/VXPrefPaneController.h"

#import "appkit/Interface.h"

#include "appkit/Composition.h"
#include "appkit/Controls.h"
#include "appkit/Resources.h"
#include "appkit/Sender.h"
#include "appkit/WeakWindow.h"
#include "pane/VXPrefPaneController.h"

namespace appkit = quorel::appkit;

struct VXPaneState {
    std::shared_ptr<quorel::VXPrefPaneController> controller;
    appkit::WeakWindow hostWindow;
    bool selected = false;  // ever
    bool shown = false;     // selected, and not left yet
};

@implementation VXPrefPaneController

- (id)initWithBundle:(NSBundle *)bundle {
    if (!(self = [super initWithBundle:bundle])) return nil;
    _state = new VXPaneState;
    auto &services = appkit::Composition::ofBundle(bundle);
    _state->controller =
        quorel::VXPrefPaneController::initWithBundle(services.bundle, services.configuratorNib, services.platform);
    if (!_state->controller) {
        [self release];
        return nil;
    }
    [self observe:NSApplicationWillTerminateNotification by:@selector(hostQuits:)];
    [self observe:VXProcessEndsNotification by:@selector(processEnds:)];
    return self;
}

- (void)observe:(NSString *)name by:(SEL)operation {
    [[NSNotificationCenter defaultCenter] addObserver:self selector:operation name:name object:nil];
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    delete _state;
    [super dealloc];
}

- (void)awakeFromNib {
    if (_state->controller->outlets.applyButton) return;
    [self prepareInterface];
    // A control that the file lacks is a wrapper of nil, which takes every message.
    auto &outlets = _state->controller->outlets;
    outlets.configView = appkit::wrapped<appkit::View>(configView);
    outlets.aboutSheet = appkit::wrapped<appkit::Window>(aboutSheet);
    outlets.applyButton = std::make_shared<appkit::Button>(applyButton);
    outlets.revertButton = std::make_shared<appkit::Button>(revertButton);
    outlets.authButton = std::make_shared<appkit::Button>(authButton);
    outlets.checkUpdateAtStartup = std::make_shared<appkit::Button>(checkUpdateAtStartup);
    outlets.lockDescLabel = std::make_shared<appkit::TextField>(lockDescLabel);
    outlets.popUpUpdate = std::make_shared<appkit::PopUpButton>(popUpUpdate);
    outlets.menuCheck = std::make_shared<appkit::Button>(menuCheck);
    outlets.networkAdminCheck = std::make_shared<appkit::Button>(networkAdminCheck);
    outlets.statusDaemon = std::make_shared<appkit::TextField>(statusDaemon);
    outlets.statusDaemonImageView = std::make_shared<appkit::ImageView>(statusDaemonImageView);
    outlets.statusUserAgent = std::make_shared<appkit::TextField>(statusUserAgent);
    outlets.statusUserAgentImageView = std::make_shared<appkit::ImageView>(statusUserAgentImageView);
    outlets.theVersion = std::make_shared<appkit::TextField>(theVersion);
    _state->controller->awakeFromNib();
}

- (void)prepareInterface {
    NSBundle *bundle = [self bundle];
    VXLocalizeWindow(_window, bundle);
    VXLocalizeWindow(aboutSheet, bundle);
    VXSetButtonImages(authButton, @"Locked", @"Unlocked", bundle);
    [theIcon setImage:VXImageNamed(@"Quorel", bundle)];
    NSString *copyright = [bundle objectForInfoDictionaryKey:@"NSHumanReadableCopyright"];
    [theCopyright setStringValue:copyright ? copyright : @""];
}

// The host's calls

- (void)didSelect {
    [super didSelect];
    if (!_state->selected) {
        // From now on the polling keeps the controller, whose controls must not lose their target.
        _state->selected = true;
        [self retain];
    }
    _state->shown = true;
    _state->controller->didSelect();
    [self takeKeyboard];
}

/* A host that quits takes no leave of the pane that it shows. */
- (void)hostQuits:(NSNotification *)notification {
    if (_state->shown) [self willUnselect];
}

- (void)processEnds:(NSNotification *)notification {
    if (_state->shown) _state->controller->willEnd();
    _state->shown = false;
}

- (void)willUnselect {
    _state->shown = false;
    _state->controller->willUnselect();
    [self linkKeyViewsWithout:[self mainView]];
    [super willUnselect];
}

/* Tab goes through the pane and what the host has around it. At first the keyboard is where there is something to do:
 * at the list, or at the padlock. */
- (void)takeKeyboard {
    [self linkKeyViewsWithout:nil];
    NSArray *keyViews = VXKeyViewsIn(configView);
    if (![keyViews count]) return;
    NSView *list = [keyViews objectAtIndex:0];
    [list scrollPoint:NSZeroPoint];  // scaled, it begins a little below its first row
    [[list window] makeFirstResponder:[authButton state] == NSOnState ? list : authButton];
}

- (void)linkKeyViewsWithout:(NSView *)gone {
    NSMutableArray *keyViews = [NSMutableArray array];
    for (NSView *view in VXKeyViewsIn([[[self mainView] window] contentView])) {
        if (![view isDescendantOf:gone]) [keyViews addObject:view];
    }
    VXLinkKeyViews(keyViews);
}

- (void)setShouldUnselect:(NSPreferencePaneUnselectReply)answer {
}

- (void)about {
    [self about:nil];
}

- (NSWindow *)vxPrefPaneWindow {
    return _state->hostWindow.get();
}

- (void)setVxPrefPaneWindow:(NSWindow *)window {
    _state->hostWindow.set(window);
}

- (BOOL)pong {
    return _state->controller->pong();
}

- (quorel::VXCommunicationCenter *)communicationCenter {
    return _state->controller->communicationCenter();
}

// The controls' actions

- (IBAction)applyNow:(id)sender {
    _state->controller->applyNow(appkit::senderFrom(sender).get());
}

- (IBAction)revert:(id)sender {
    _state->controller->revert(appkit::senderFrom(sender).get());
}

- (IBAction)toggleAuth:(id)sender {
    _state->controller->toggleAuth(appkit::senderFrom(sender).get());
}

- (IBAction)checkboxAction:(id)sender {
    _state->controller->checkboxAction(appkit::senderFrom(sender).get());
}

- (IBAction)checkUpdates:(id)sender {
    _state->controller->checkUpdates(appkit::senderFrom(sender));
}

- (IBAction)about:(id)sender {
    VXLetGoOfButton(sender);
    // The controller remembers the wrapper weakly, so that the window is kept only for as long as the sheet is open.
    const auto window = appkit::wrapped<appkit::Window>([self vxPrefPaneWindow]);
    _state->controller->setVxPrefPaneWindow(window);
    _state->controller->about(appkit::senderFrom(sender).get());
}

- (IBAction)closeSheet:(id)sender {
    _state->controller->closeSheet(appkit::senderFrom(sender).get());
}

/* Where a window manager frames the about sheet like any window. */
- (BOOL)windowShouldClose:(id)window {
    [self closeSheet:window];
    return NO;
}

@end
