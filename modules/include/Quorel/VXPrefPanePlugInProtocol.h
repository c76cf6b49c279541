/*
 * The contract of an action module.
 *
 * A module is a bundle "Name.vxplugin" whose information dictionary names its class under "VXEditClass". The class
 * conforms to VXPrefPanePlugInProtocol and answers every message of VXPrefPanePlugInMessages. All of it runs on the
 * main thread.
 *
 * One object serves every Schedule of its type: setParameters: comes before each question about a Schedule. Both
 * flags are kept inside the parameters, under "Needs Startup" and "Needs Wake Up", which are all that is read of them.
 */
#import <AppKit/AppKit.h>

@protocol VXPrefPanePlugInProtocol

/* YES for a base module of the product; these are listed first. */
- (BOOL)isBaseModule;
/* Load the interface, so that setupView can answer. Sent once. */
- (void)loadNib;
/* The options view shown in the edit sheet, or nil. Its height decides the height of the sheet. */
- (NSView *)setupView;
- (BOOL)needsWakeUp;
/* A module that leaves the user no choice keeps its own value; the sheet then disables the check box. */
- (void)setNeedsWakeUp:(BOOL)needs;
/* The flag that a Schedule gets when the user picks this type. */
- (BOOL)needsWakeUpByDefault;
- (BOOL)needsStartup;
- (void)setNeedsStartup:(BOOL)needs;
- (BOOL)needsStartupByDefault;
/* The display name, in the user's language. nil keeps the module out. Should be unique. */
- (NSString *)pluginName;
/* Show the current parameters in the options view. */
- (void)fillSetupInterfaceFromParameters;
/* Read the options view into the current parameters. */
- (void)fillParametersFromSetupInterface;
/* Parameters of a fresh Schedule, or nil. */
- (NSDictionary *)defaultParameters;
/* One line: what the action does with the current parameters. */
- (NSString *)actionString;

@end

@protocol VXPrefPanePlugInMessages

/* Prepare the class; NO refuses the module. Sent before any object exists. */
+ (BOOL)initializeClass:(NSBundle *)bundle;
+ (void)terminateClass;
/* The stable identifier stored in Schedules: reverse-domain, and never localised. */
- (NSString *)pluginIdentifier;
/* The current parameters: property-list values only, both flags included; or nil. */
- (NSDictionary *)parameters;
/* Make these the current parameters and take both flags from them. nil must be accepted. */
- (void)setParameters:(NSDictionary *)parameters;

@optional
/* The start-up and wake-up flags were just set from the sheet's check boxes; the module may change them. The sender
 * is always nil. */
- (void)checkboxAction:(id)sender;

@end
