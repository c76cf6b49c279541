#import "appkit/VXConfigurator.h"

#import "appkit/Interface.h"
#import "appkit/VXConfiguratorCell.h"
#import "appkit/VXTimeControl.h"

#include "appkit/CalendarDates.h"
#include "appkit/Sender.h"
#include "appkit/Table.h"
#include "appkit/Values.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"

#include <functional>

namespace appkit = quorel::appkit;

@implementation VXConfigurator

- (id)initWithConfigurator:(quorel::VXConfigurator *)configurator bundle:(NSBundle *)bundle {
    if ((self = [super init])) {
        _configurator = configurator;
        _bundle = bundle;
    }
    return self;
}

- (NSArray *)dayBoxes {
    return [NSArray arrayWithObjects:activeOnMonday, activeOnTuesday, activeOnWednesday, activeOnThursday,
                                     activeOnFriday, activeOnSaturday, activeOnSunday, nil];
}

- (BOOL)isComplete {
    return mainView && tableView && addButton && deleteButton && editButton && progressMain && timeControl &&
           [[self dayBoxes] count] == 7 && selectAllButton && popUpType && startupEdit && wakeUpEdit &&
           actionStateEdit && progressEdit;
}

- (void)awakeFromNib {
    if (!_configurator->outlets.mainView && [self isComplete]) {
        [self prepareInterface];
        [self connectOutlets];
        _configurator->awakeFromNib();
        _configurator->outlets.tableView->setDoubleAction([self] { [self editSchedule:nil]; });
#ifdef GNUSTEP
        [self giveOptionsRoom];
#endif
    }
}

- (void)prepareInterface {
    VXLocalizeView(mainView, _bundle);
    VXLocalizeView(blankOptionsView, _bundle);
    VXLocalizeWindow(editSheet, _bundle);
    VXSetButtonImages(addButton, @"Add", nil, _bundle);
    VXSetButtonImages(deleteButton, @"Remove", nil, _bundle);
    VXSetButtonImages(editButton, @"Edit", nil, _bundle);
    [progressMain setDisplayedWhenStopped:NO];
    [progressEdit setDisplayedWhenStopped:NO];
    [self nameDays];
#ifdef GNUSTEP
    [self replaceTimeControl];
    [self fitColumns];
#endif
    [editSheet setInitialFirstResponder:timeControl];
}

/* Headers and check boxes bear the short names that the user's locale has for the days. */
- (void)nameDays {
    NSArray *names = [appkit::timeFormatter() shortWeekdaySymbols];  // Sunday first
    if ([names count] != 7) return;
    NSUInteger day = 1;
    NSEnumerator *boxes = [[self dayBoxes] objectEnumerator];
    for (const auto identifier : quorel::schedule_keys::kActiveOnDays) {
        NSString *name = [names objectAtIndex:day++ % 7];
        [[[tableView tableColumnWithIdentifier:appkit::nsString(identifier)] headerCell] setStringValue:name];
        [(NSButton *)[boxes nextObject] setTitle:name];
    }
}

#ifdef GNUSTEP

/* From its second opening on the sheet is lower by the height of a title bar, which sheets lose elsewhere. Here they
 * have none to lose: it would be cut off the options view. */
- (void)giveOptionsRoom {
    NSRect frame = [editCustomView frame];
    frame.size.height += 22;
    [editCustomView setFrame:frame];
}

/* Loading has stretched the last column, as if there were no scroller. */
- (void)fitColumns {
    NSArray *columns = [tableView tableColumns];
    NSTableColumn *last = [columns lastObject];
    [last setWidth:[[columns objectAtIndex:[columns count] - 2] width]];
}

/* The framework's date picker cannot be edited here. */
- (void)replaceTimeControl {
    VXTimeControl *control = [[[VXTimeControl alloc] initWithFrame:[timeControl frame]] autorelease];
    [control setAutoresizingMask:[timeControl autoresizingMask]];
    [[timeControl superview] replaceSubview:timeControl with:control];
    timeControl = control;
}

#endif

/* Tab follows the reading order, through the module's options as well. */
- (void)optionsDidChange {
    NSMutableArray *keyViews = [NSMutableArray arrayWithObject:timeControl];
    [keyViews addObjectsFromArray:[self dayBoxes]];
    [keyViews addObject:selectAllButton];
    [keyViews addObject:popUpType];
    [keyViews addObjectsFromArray:VXKeyViewsIn(editCustomView)];
    [keyViews addObjectsFromArray:[NSArray arrayWithObjects:startupEdit, wakeUpEdit, cancelButton, saveButton, nil]];
    VXLinkKeyViews(keyViews);
}

- (void)connectOutlets {
    auto &outlets = _configurator->outlets;
    outlets.mainView = appkit::wrapped<appkit::View>(mainView);
    outlets.tableView = std::make_shared<appkit::TableView>(tableView, self);
    outlets.addButton = appkit::wrapped<appkit::Button>(addButton);
    outlets.deleteButton = appkit::wrapped<appkit::Button>(deleteButton);
    outlets.editButton = appkit::wrapped<appkit::Button>(editButton);
    outlets.progressMain = appkit::wrapped<appkit::ProgressIndicator>(progressMain);
    outlets.editSheet = appkit::wrapped<appkit::Window>(editSheet);
    outlets.editCustomView = appkit::wrapped<appkit::View>(editCustomView);
    outlets.blankOptionsView = appkit::wrapped<appkit::View>(blankOptionsView);
    outlets.timeControl = appkit::wrapped<appkit::DatePicker>(timeControl);
    NSEnumerator *boxes = [[self dayBoxes] objectEnumerator];
    for (auto &day : outlets.activeOn) day = appkit::wrapped<appkit::Button>((NSButton *)[boxes nextObject]);
    outlets.selectAllButton = appkit::wrapped<appkit::Button>(selectAllButton);
    outlets.popUpType = appkit::wrapped<appkit::PopUpButton>(popUpType);
    outlets.startupEdit = appkit::wrapped<appkit::Button>(startupEdit);
    outlets.wakeUpEdit = appkit::wrapped<appkit::Button>(wakeUpEdit);
    outlets.actionStateEdit = appkit::wrapped<appkit::ImageView>(actionStateEdit);
    outlets.progressEdit = appkit::wrapped<appkit::ProgressIndicator>(progressEdit);
}

// Actions

/* The action's parameters are the sheet's until it is closed. A row that is asked for its line would put its own in
 * their place, so the table shows what it showed. */
- (void)runSheet:(const std::function<void()> &)run {
    NSTableColumn *infos = [tableView tableColumnWithIdentifier:appkit::nsString(quorel::schedule_keys::kInfos)];
    NSMutableDictionary *shown = [NSMutableDictionary dictionary];
    const NSRange rows = [tableView rowsInRect:[tableView visibleRect]];
    for (NSUInteger row = rows.location; row < NSMaxRange(rows); ++row) {
        id summary = [self tableView:tableView objectValueForTableColumn:infos row:static_cast<NSInteger>(row)];
        if (summary) [shown setObject:summary forKey:[NSNumber numberWithUnsignedInteger:row]];
    }
    _shown = shown;
    run();
    _shown = nil;
    [tableView setNeedsDisplay:YES];
}

- (IBAction)addSchedule:(id)sender {
    VXLetGoOfButton(sender);
    const NSInteger before = [tableView numberOfRows];
    [self runSheet:[&] { _configurator->addSchedule(appkit::senderFrom(sender).get()); }];
    const NSInteger last = [tableView numberOfRows] - 1;
    if (last < before) return;
    [tableView selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(last)] byExtendingSelection:NO];
    [tableView scrollRowToVisible:last];
}

- (IBAction)editSchedule:(id)sender {
    VXLetGoOfButton(sender);
    [self runSheet:[&] { _configurator->editSchedule(appkit::senderFrom(sender).get()); }];
}

- (IBAction)deleteSchedule:(id)sender {
    _configurator->deleteSchedule(appkit::senderFrom(sender).get());
}

- (IBAction)selectActionType:(id)sender {
    _configurator->selectActionType(appkit::senderFrom(sender).get());
}

- (IBAction)checkAllDays:(id)sender {
    _configurator->checkAllDays(appkit::senderFrom(sender).get());
}

- (IBAction)checkboxAction:(id)sender {
    _configurator->checkboxAction(appkit::senderFrom(sender).get());
}

- (IBAction)saveSchedule:(id)sender {
#ifdef GNUSTEP
    if (![(VXTimeControl *)timeControl commitEditing]) return;
#endif
    _configurator->saveSchedule(appkit::senderFrom(sender).get());
}

- (IBAction)closeEditSheet:(id)sender {
    _configurator->closeEditSheet(appkit::senderFrom(sender).get());
}

/* Where a window manager frames the sheet like any window, closing it is cancelling. */
- (BOOL)windowShouldClose:(id)window {
    [self closeEditSheet:window];
    return NO;
}

- (void)toggleEnabled:(id)sender {
    _configurator->toggleEnabled(appkit::senderFrom(sender).get());
}

// Data source

- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
    return _configurator->numberOfRowsInTableView();
}

- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)column row:(NSInteger)row {
    const appkit::TableColumn wrapper(column);
    if (_shown && wrapper.identifier() == quorel::schedule_keys::kInfos)
        return [_shown objectForKey:[NSNumber numberWithInteger:row]];
    const quorel::Value value = _configurator->tableViewObjectValueForTableColumnRow(wrapper, static_cast<int>(row));
    if (value.isAbsent() || value.isDictionary()) return appkit::objectFromValue(value);
    // Whatever a file holds under a flag: a check box understands numbers.
    return [NSNumber numberWithInt:value.intValue()];
}

- (void)tableView:(NSTableView *)table
    setObjectValue:(id)object
    forTableColumn:(NSTableColumn *)column
               row:(NSInteger)row {
    const appkit::TableColumn wrapper(column);
    _configurator->tableViewSetObjectValueForTableColumnRow(appkit::valueFromObject(object), wrapper,
                                                            static_cast<int>(row));
}

- (BOOL)tableView:(NSTableView *)table writeRows:(NSArray *)rows toPasteboard:(NSPasteboard *)pasteboard {
    std::vector<int> indexes;
    for (NSNumber *row in rows) indexes.push_back([row intValue]);
    appkit::Pasteboard wrapper(pasteboard);
    return _configurator->tableViewWriteRowsToPasteboard(indexes, wrapper);
}

static quorel::DropOperation dropOperationFrom(NSTableViewDropOperation operation) {
    return operation == NSTableViewDropOn ? quorel::DropOperation::On : quorel::DropOperation::Above;
}

- (NSDragOperation)tableView:(NSTableView *)table
                validateDrop:(id<NSDraggingInfo>)info
                 proposedRow:(NSInteger)row
       proposedDropOperation:(NSTableViewDropOperation)operation {
    return _configurator->tableViewValidateDropProposedRowProposedDropOperation(static_cast<int>(row),
                                                                                dropOperationFrom(operation));
}

- (BOOL)tableView:(NSTableView *)table
       acceptDrop:(id<NSDraggingInfo>)info
              row:(NSInteger)row
    dropOperation:(NSTableViewDropOperation)operation {
    return _configurator->tableViewAcceptDropRowDropOperation(static_cast<int>(row), dropOperationFrom(operation));
}

// Delegate

- (BOOL)tableView:(NSTableView *)table shouldEditTableColumn:(NSTableColumn *)column row:(NSInteger)row {
    const appkit::TableColumn wrapper(column);
    return _configurator->tableViewShouldEditTableColumnRow(wrapper, static_cast<int>(row));
}

- (void)tableViewSelectionDidChange:(NSNotification *)notification {
    _configurator->tableViewSelectionDidChange();
}

- (BOOL)selectionShouldChangeInTableView:(NSTableView *)table {
    return _configurator->selectionShouldChangeInTableView();
}

- (BOOL)tableView:(NSTableView *)table shouldSelectTableColumn:(NSTableColumn *)column {
    const appkit::TableColumn wrapper(column);
    const bool selects = _configurator->tableViewShouldSelectTableColumn(wrapper);
    const quorel::Array &rows = _configurator->scheduleArray();
    const quorel::Value context = quorel::Dictionary{{"Colomn identifier", wrapper.identifier()}, {"Order", false}};
    const bool descending = !rows.empty() && quorel::sortColomnFunction(rows.front(), rows.back(), context) ==
                                                 quorel::ComparisonResult::Descending;
    [(VXScheduleHeaderView *)[table headerView] showSortedBy:[table columnWithIdentifier:[column identifier]]
                                                   ascending:!descending];
    return selects;
}

/* A Schedule that is turned off looks like it. */
- (void)tableView:(NSTableView *)table
    willDisplayCell:(id)cell
     forTableColumn:(NSTableColumn *)column
                row:(NSInteger)row {
    if (![cell isKindOfClass:[VXConfiguratorCell class]]) return;
    NSTableColumn *flags = [table tableColumnWithIdentifier:appkit::nsString(quorel::schedule_keys::kIsEnabled)];
    [cell setDimmed:[[self tableView:table objectValueForTableColumn:flags row:row] intValue] == 0];
}

- (NSString *)descriptionOfRow:(NSInteger)row {
    NSTableColumn *infos = [tableView tableColumnWithIdentifier:appkit::nsString(quorel::schedule_keys::kInfos)];
    VXConfiguratorCell *cell = [[[infos dataCell] copy] autorelease];
    [cell setObjectValue:[self tableView:tableView objectValueForTableColumn:infos row:row]];
    return [cell stringValue];
}

#ifdef GNUSTEP

/* Here a table whose selection must not change does not ask about its columns. */
- (void)tableView:(NSTableView *)table didClickTableColumn:(NSTableColumn *)column {
    if (_configurator->isLocked()) [self tableView:table shouldSelectTableColumn:column];
}

#endif

@end

namespace quorel::appkit {

bool ConfiguratorNib::loadNibNamedOwner(std::string_view name, quorel::VXConfigurator &owner) {
    ::VXConfigurator *nibOwner = [[[::VXConfigurator alloc] initWithConfigurator:&owner bundle:_bundle] autorelease];
    NSDictionary *table = [NSDictionary dictionaryWithObject:nibOwner forKey:NSNibOwner];
    return [_bundle loadNibFile:nsString(name) externalNameTable:table withZone:NULL] && [nibOwner isComplete];
}

}  // namespace quorel::appkit
