#import <AppKit/AppKit.h>
#import <PreferencePanes/NSPreferencePane.h>

/* The pane's face to a host that embeds it. Main thread. */
@protocol VXPrefPaneControllerProtocol <NSObject>
- (void)willSelect;
- (void)didSelect;
- (void)willUnselect;
/* Shows the about sheet; returns when it has been closed. */
- (void)about;
- (NSWindow *)vxPrefPaneWindow;
/* The window over which the pane runs its sheets. It is not kept; nil once it is gone. */
- (void)setVxPrefPaneWindow:(NSWindow *)window;
- (NSView *)mainView;
- (void)setMainView:(NSView *)view;
- (NSPreferencePaneUnselectReply)shouldUnselect;
/* Without effect: the pane never refuses. */
- (void)setShouldUnselect:(NSPreferencePaneUnselectReply)answer;
@end

#ifdef __cplusplus
namespace quorel {
class VXCommunicationCenter;
}
typedef quorel::VXCommunicationCenter VXCommunicationCenterReference;
#else
typedef struct VXCommunicationCenter VXCommunicationCenterReference;  // opaque
#endif

/* The pane's face to the communication center. */
@protocol VXCommunicationProtocol <NSObject>
/* "I am alive"; any thread. */
- (BOOL)pong;
- (VXCommunicationCenterReference *)communicationCenter;
@end

/* The pane's principal class: the owner of its interface file, which passes on to the controller what the host and the
 * controls say. */
@interface VXPrefPaneController : NSPreferencePane <VXPrefPaneControllerProtocol, VXCommunicationProtocol> {
    struct VXPaneState *_state;

    IBOutlet NSView *configView;
    IBOutlet NSWindow *aboutSheet;
    IBOutlet NSButton *applyButton;
    IBOutlet NSButton *revertButton;
    IBOutlet NSButton *authButton;
    IBOutlet NSButton *checkUpdateAtStartup;
    IBOutlet NSTextField *lockDescLabel;
    IBOutlet NSPopUpButton *popUpUpdate;
    IBOutlet NSButton *menuCheck;
    IBOutlet NSButton *networkAdminCheck;
    IBOutlet NSTextField *statusDaemon;
    IBOutlet NSImageView *statusDaemonImageView;
    IBOutlet NSTextField *statusUserAgent;
    IBOutlet NSImageView *statusUserAgentImageView;
    IBOutlet NSTextField *theVersion;
    IBOutlet NSTextField *theCopyright;
    IBOutlet NSImageView *theIcon;
}

- (IBAction)applyNow:(id)sender;
- (IBAction)revert:(id)sender;
- (IBAction)toggleAuth:(id)sender;
- (IBAction)checkboxAction:(id)sender;
- (IBAction)checkUpdates:(id)sender;
- (IBAction)about:(id)sender;
- (IBAction)closeSheet:(id)sender;

@end
