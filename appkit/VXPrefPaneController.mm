#import "appkit/VXPrefPaneController.h"

#import "appkit/Interface.h"

#include "appkit/Composition.h"
#include "appkit/Controls.h"
#include "appkit/Sender.h"
#include "pane/VXPrefPaneController.h"

namespace appkit = quorel::appkit;

struct VXPaneState {
    std::shared_ptr<quorel::VXPrefPaneController> controller;
    /// The controller remembers it weakly; it is let go of when it closes.
    std::shared_ptr<appkit::Window> hostWindow;
    bool selected = false;
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
    return self;
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    delete _state;
    [super dealloc];
}

- (void)awakeFromNib {
    if (_state->controller->outlets.applyButton) return;
    [self prepareInterface];
    auto &outlets = _state->controller->outlets;
    outlets.configView = appkit::wrapped<appkit::View>(configView);
    outlets.aboutSheet = appkit::wrapped<appkit::Window>(aboutSheet);
    outlets.applyButton = appkit::wrapped<appkit::Button>(applyButton);
    outlets.revertButton = appkit::wrapped<appkit::Button>(revertButton);
    outlets.authButton = appkit::wrapped<appkit::Button>(authButton);
    outlets.checkUpdateAtStartup = appkit::wrapped<appkit::Button>(checkUpdateAtStartup);
    outlets.lockDescLabel = appkit::wrapped<appkit::TextField>(lockDescLabel);
    outlets.popUpUpdate = appkit::wrapped<appkit::PopUpButton>(popUpUpdate);
    outlets.menuCheck = appkit::wrapped<appkit::Button>(menuCheck);
    outlets.networkAdminCheck = appkit::wrapped<appkit::Button>(networkAdminCheck);
    outlets.statusDaemon = appkit::wrapped<appkit::TextField>(statusDaemon);
    outlets.statusDaemonImageView = appkit::wrapped<appkit::ImageView>(statusDaemonImageView);
    outlets.statusUserAgent = appkit::wrapped<appkit::TextField>(statusUserAgent);
    outlets.statusUserAgentImageView = appkit::wrapped<appkit::ImageView>(statusUserAgentImageView);
    outlets.theVersion = appkit::wrapped<appkit::TextField>(theVersion);
    _state->controller->awakeFromNib();
}

- (void)prepareInterface {
    NSBundle *bundle = [self bundle];
    VXLocalizeWindow(_window, bundle);
    VXLocalizeWindow(aboutSheet, bundle);
    VXSetButtonImages(authButton, @"Locked", @"Unlocked", bundle);
    NSString *icon = [bundle pathForResource:@"Quorel" ofType:@"png"];
    [theIcon setImage:[[[NSImage alloc] initWithContentsOfFile:icon] autorelease]];
    NSString *copyright = [bundle objectForInfoDictionaryKey:@"NSHumanReadableCopyright"];
    [theCopyright setStringValue:copyright ? copyright : @""];
#ifdef GNUSTEP
    VXDrawSheetBorder(aboutSheet);
#endif
}

// The host's calls

- (void)didSelect {
    [super didSelect];
    if (!_state->selected) {
        // From now on the polling keeps the controller, whose controls must not lose their target.
        _state->selected = true;
        [self retain];
    }
    _state->controller->didSelect();
}

- (void)willUnselect {
    _state->controller->willUnselect();
    [super willUnselect];
}

- (void)about {
    _state->controller->about();
}

- (NSWindow *)vxPrefPaneWindow {
    return _state->hostWindow ? _state->hostWindow->nativeWindow() : nil;
}

- (void)setVxPrefPaneWindow:(NSWindow *)window {
    NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
    [center removeObserver:self name:NSWindowWillCloseNotification object:nil];
    _state->hostWindow = appkit::wrapped<appkit::Window>(window);
    _state->controller->setVxPrefPaneWindow(_state->hostWindow);
    if (!window) return;
    [center addObserver:self selector:@selector(hostWindowWillClose:) name:NSWindowWillCloseNotification object:window];
}

- (void)hostWindowWillClose:(NSNotification *)notification {
    [self setVxPrefPaneWindow:nil];
}

- (BOOL)pong {
    return _state->controller->pong();
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
