#include "configurator/VXConfigurator.h"
#include "kit/ActionSummary.h"
#include "kit/Additions.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"

namespace quorel {

namespace {

constexpr double kRowHeight = 28;

}  // namespace

std::shared_ptr<VXConfigurator> VXConfigurator::init(std::shared_ptr<Bundle> bundle, ConfiguratorNib& nib,
                                                     Platform& platform) {
    std::shared_ptr<VXConfigurator> configurator(new VXConfigurator(std::move(bundle), platform));
    if (!nib.loadNibNamedOwner("Configurator", *configurator)) return nullptr;
    return configurator;
}

VXConfigurator::VXConfigurator(std::shared_ptr<Bundle> bundle, Platform& platform)
    : _bundle(std::move(bundle)), _platform(platform) {}

void VXConfigurator::awakeFromNib() {
    outlets.progressMain->startAnimation();
    loadModules();

    TableView& table = *outlets.tableView;
    table.setTarget(this);
    table.setDoubleAction([this] { editSchedule(outlets.tableView.get()); });
    table.setRowHeight(kRowHeight);
    table.setAllowsColumnSelection(true);  // or header clicks would not be told
    table.setDelegate(this);
    table.setVerticalMotionCanBeginDrag(false);
    table.registerForDraggedTypes({kSchedulePasteboard});
    setLocked(false);

    const Rect sheet = outlets.editSheet ? outlets.editSheet->frame() : Rect();
    const double customHeight = outlets.editCustomView ? outlets.editCustomView->frame().height : 0;
    _editSheetMinSize = {sheet.width, sheet.height - customHeight};
    outlets.progressMain->stopAnimation();
    outlets.timeControl->setDelegate(this);
}

void VXConfigurator::setLocked(bool locked) {
    _locked = locked;
    outlets.addButton->setEnabled(!locked);
    tableViewSelectionDidChange();
    makeColomnCheckBox(schedule_keys::kIsEnabled);
    makeColomnActionCell(schedule_keys::kInfos);
    for (const auto day : schedule_keys::kActiveOnDays) makeColomnCheckBox(day);
    clearSelection();
}

void VXConfigurator::makeColomnCheckBox(std::string_view identifier) {
    const auto column = outlets.tableView->tableColumnWithIdentifier(identifier);
    if (!column) return;
    const auto cell = _platform.cells.makeButtonCell("");
    cell->setButtonType(ButtonType::Switch);
    cell->setControlSize(ControlSize::Small);
    cell->setImagePosition(ImagePosition::ImageOnly);
    cell->setTarget(this);
    cell->setEnabled(!_locked);
    column->setDataCell(cell);
}

void VXConfigurator::makeColomnActionCell(std::string_view identifier) {
    const auto column = outlets.tableView->tableColumnWithIdentifier(identifier);
    if (!column) return;
    const auto cell = _platform.cells.makeConfiguratorCell("");
    cell->setTarget(this);
    cell->setEnabled(!_locked);
    column->setDataCell(cell);
}

void VXConfigurator::clearSelection() {
    TableView& table = *outlets.tableView;
    for (int selected = table.numberOfSelectedRows(); selected > 0; --selected) table.deselectRow(table.selectedRow());
}

int VXConfigurator::numberOfRowsInTableView() {
    return static_cast<int>(_scheduleArray.size());
}

Value VXConfigurator::tableViewObjectValueForTableColumnRow(const TableColumn& column, int row) {
    if (!hasRow(row)) return {};
    const std::string identifier = column.identifier();
    // By value: a module is asked about a Schedule that stays whole, whatever happens to the list meanwhile.
    const Value schedule = scheduleAt(row);
    return identifier == schedule_keys::kInfos ? actionSummaryOf(schedule) : schedule[identifier];
}

Value VXConfigurator::actionSummaryOf(const Value& schedule) {
    const Value& type = schedule[schedule_keys::kActionType];
    if (!isRegistered(type)) return {};
    auto& module = moduleOfType(type);
    module.setParameters(schedule[schedule_keys::kActionParameters]);
    return Dictionary{{summary::kName, module.pluginName().value_or(std::string())},
                      {summary::kAction, module.actionString()},
                      {summary::kTime, timeTextOf(schedule)},
                      {summary::kStartup, module.needsStartup()},
                      {summary::kWakeUp, module.needsWakeUp()}};
}

std::string VXConfigurator::timeTextOf(const Value& schedule) const {
    return _platform.timeFormat.shortTimeString(
        dateFromHourMinsFromDate(schedule[schedule_keys::kActionHour].intValue(),
                                 schedule[schedule_keys::kActionMinute].intValue(), _platform.clock.currentDate()));
}

void VXConfigurator::tableViewSetObjectValueForTableColumnRow(const Value&, const TableColumn& column, int row) {
    toggle(column.identifier(), row);
}

void VXConfigurator::toggleEnabled(const Object*) {
    if (!_locked) toggle(schedule_keys::kIsEnabled, outlets.tableView->selectedRow());
}

void VXConfigurator::toggle(std::string_view identifier, int row) {
    // The summary is no flag, and its column's name no key of a Schedule.
    if (!hasRow(row) || identifier == schedule_keys::kInfos) return;
    Value& entry = _scheduleArray[static_cast<std::size_t>(row)];
    const int flag = entry[identifier].intValue();
    if (flag == 0 || flag == 1) entry = entry.with(identifier, 1 - flag);
    outlets.tableView->reloadData();
    postEdited();
}

bool VXConfigurator::tableViewShouldEditTableColumnRow(const TableColumn&, int) {
    return false;
}

void VXConfigurator::tableViewSelectionDidChange() {
    const bool selected = outlets.tableView->selectedRow() != -1;
    outlets.deleteButton->setEnabled(selected);
    outlets.editButton->setEnabled(selected);
}

bool VXConfigurator::selectionShouldChangeInTableView() {
    if (!_locked) return true;
    clearSelection();
    return false;
}

}  // namespace quorel
