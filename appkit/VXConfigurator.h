#import <AppKit/AppKit.h>

#import "appkit/VXOptionsContainer.h"
#import "appkit/VXScheduleTableView.h"

#include "configurator/VXConfigurator.h"

/* Owner of the interface file "Configurator": gives the configurator its outlets and passes on to it what controls and
 * table say. */
@interface VXConfigurator : NSObject <VXScheduleTableKeys, VXOptionsOwner> {
    quorel::VXConfigurator *_configurator;
    NSBundle *_bundle;
    NSDictionary *_shown;  // while the sheet is open: what the rows in sight say, by their numbers

    IBOutlet NSView *mainView;
    IBOutlet NSTableView *tableView;
    IBOutlet NSButton *addButton;
    IBOutlet NSButton *deleteButton;
    IBOutlet NSButton *editButton;
    IBOutlet NSProgressIndicator *progressMain;
    IBOutlet NSWindow *editSheet;
    IBOutlet NSView *editCustomView;
    IBOutlet NSView *blankOptionsView;
    IBOutlet NSControl *timeControl;
    IBOutlet NSButton *activeOnMonday;
    IBOutlet NSButton *activeOnTuesday;
    IBOutlet NSButton *activeOnWednesday;
    IBOutlet NSButton *activeOnThursday;
    IBOutlet NSButton *activeOnFriday;
    IBOutlet NSButton *activeOnSaturday;
    IBOutlet NSButton *activeOnSunday;
    IBOutlet NSButton *selectAllButton;
    IBOutlet NSPopUpButton *popUpType;
    IBOutlet NSButton *startupEdit;
    IBOutlet NSButton *wakeUpEdit;
    IBOutlet NSImageView *actionStateEdit;
    IBOutlet NSProgressIndicator *progressEdit;
    IBOutlet NSButton *saveButton;
    IBOutlet NSButton *cancelButton;
}

/* The configurator is not owned: it is what keeps this object, through its table. `bundle` is the pane's. */
- (id)initWithConfigurator:(quorel::VXConfigurator *)configurator bundle:(NSBundle *)bundle;
/* False when the interface file lacks a control that the configurator cannot do without. */
- (BOOL)isComplete;

- (IBAction)addSchedule:(id)sender;
- (IBAction)editSchedule:(id)sender;
- (IBAction)deleteSchedule:(id)sender;
- (IBAction)selectActionType:(id)sender;
- (IBAction)checkAllDays:(id)sender;
- (IBAction)checkboxAction:(id)sender;
- (IBAction)saveSchedule:(id)sender;
- (IBAction)closeEditSheet:(id)sender;

@end

namespace quorel::appkit {

/// Loads the interface file "Configurator" out of the pane's bundle, which is not owned.
class ConfiguratorNib : public quorel::ConfiguratorNib {
public:
    explicit ConfiguratorNib(NSBundle *bundle) : _bundle(bundle) {}
    bool loadNibNamedOwner(std::string_view name, quorel::VXConfigurator &owner) override;

private:
    NSBundle *_bundle;
};

}  // namespace quorel::appkit
