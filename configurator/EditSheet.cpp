#include <algorithm>

#include "configurator/VXConfigurator.h"
#include "kit/ActionSummary.h"
#include "kit/Additions.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"

namespace quorel {

namespace {

constexpr double kTitleBarHeight = 22;

bool firstTime = false;  // true once any sheet of the process was resized

bool isTicked(const Button& checkBox) {
    return checkBox.state() != kStateOff;
}

}  // namespace

void VXConfigurator::openEditSheetFor(const Value& scheduleToEdit) {
    const Value schedule = scheduleToEdit;  // outlives its place in the list, which a save fills anew
    outlets.progressMain->startAnimation();
    if (_plugins) {
        for (const auto& [identifier, module] : *_plugins) module->setParameters(module->defaultParameters());
    }
    auto& module = moduleOfType(schedule[schedule_keys::kActionType]);
    if (const auto name = module.pluginName()) outlets.popUpType->selectItemWithTitle(*name);
    if (!_isAdding) module.setParameters(schedule[schedule_keys::kActionParameters]);
    module.fillSetupInterfaceFromParameters();
    outlets.timeControl->setDateValue(dateFromHourMinsFromDate(schedule[schedule_keys::kActionHour].intValue(),
                                                               schedule[schedule_keys::kActionMinute].intValue(),
                                                               _platform.clock.currentDate()));
    for (std::size_t day = 0; day < schedule_keys::kActiveOnDays.size(); ++day) {
        outlets.activeOn[day]->setState(schedule[schedule_keys::kActiveOnDays[day]].intValue());
    }
    outlets.wakeUpEdit->setState(stateOf(module.needsWakeUp()));
    outlets.startupEdit->setState(stateOf(module.needsStartup()));
    selectActionType(nullptr);
    checkboxAction(nullptr);
    outlets.progressMain->stopAnimation();

    const auto sheet = outlets.editSheet;
    if (!sheet) return;
    const auto parent = _platform.application.mainWindow();
    _platform.application.beginSheetModalForWindow(*sheet, parent.get());
    _platform.application.runModalForWindow(*sheet);
    _platform.application.endSheet(*sheet);
    sheet->orderOut(this);
}

void VXConfigurator::selectActionType(const Object* sender) {
    outlets.progressEdit->startAnimation();
    auto& module = chosenModule();
    module.fillSetupInterfaceFromParameters();
    if (sender) {
        module.setNeedsWakeUp(module.needsWakeUpByDefault());
        module.setNeedsStartup(module.needsStartupByDefault());
    }
    const bool wakeUp = module.needsWakeUp();
    const bool startup = module.needsStartup();
    outlets.wakeUpEdit->setState(stateOf(wakeUp));
    outlets.startupEdit->setState(stateOf(startup));
    // A module says that a flag is fixed by ignoring its setter.
    module.setNeedsWakeUp(!wakeUp);
    module.setNeedsStartup(!startup);
    outlets.wakeUpEdit->setEnabled(module.needsWakeUp() != wakeUp);
    outlets.startupEdit->setEnabled(module.needsStartup() != startup);
    module.setNeedsWakeUp(wakeUp);
    module.setNeedsStartup(startup);
    if (outlets.editCustomView) clear(*outlets.editCustomView);
    std::shared_ptr<View> options = module.setupView();
    if (!options) options = outlets.blankOptionsView;
    resizeEditSheetUsingHeight(options ? options->frame().height : 0);
    if (options && outlets.editCustomView) outlets.editCustomView->addSubview(options);
    checkboxAction(nullptr);
    outlets.progressEdit->stopAnimation();
}

void VXConfigurator::resizeEditSheetUsingHeight(double height) {
    double newHeight = _editSheetMinSize.height + height;
    // Only the first sheet of the process is given its title bar's height.
    if (firstTime) newHeight -= kTitleBarHeight;
    firstTime = true;
    if (!outlets.editSheet) return;
    const auto mainWindow = _platform.application.mainWindow();
    const Rect parent = mainWindow ? mainWindow->frame() : Rect();
    const Rect frame{outlets.editSheet->frame().x, parent.y + parent.height - kTitleBarHeight - newHeight,
                     _editSheetMinSize.width, newHeight};
    outlets.editSheet->setFrameDisplayAnimate(frame, true, true);
}

void VXConfigurator::checkAllDays(const Object*) {
    for (const auto& day : outlets.activeOn) day->setState(kStateOn);
    checkboxAction(nullptr);
}

void VXConfigurator::checkboxAction(const Object*) {
    const auto& days = outlets.activeOn;
    const bool allTicked = std::all_of(days.begin(), days.end(), [](const auto& day) { return isTicked(*day); });
    outlets.selectAllButton->setEnabled(!allTicked);
    if (outlets.popUpType->indexOfSelectedItem() < 0) return;

    auto& module = chosenModule();
    module.setNeedsStartup(isTicked(*outlets.startupEdit));
    module.setNeedsWakeUp(isTicked(*outlets.wakeUpEdit));
    if (module.respondsToCheckboxAction()) module.checkboxAction(nullptr);
    const char* dot = summary::dotImageName(module.needsStartup(), module.needsWakeUp());
    outlets.actionStateEdit->setImage(imageNamedInBundleOfInstance(dot, *this));
}

void VXConfigurator::saveSchedule(const Object*) {
    auto& module = chosenModule();
    module.fillParametersFromSetupInterface();
    module.setNeedsWakeUp(isTicked(*outlets.wakeUpEdit));
    module.setNeedsStartup(isTicked(*outlets.startupEdit));

    const int row = outlets.tableView->selectedRow();
    Dictionary saved;
    if (_isEditing) {
        if (hasRow(row)) saved = scheduleAt(row).dictionary();
    } else if (_isAdding) {
        saved = newEmptySchedule().dictionary();
    }
    if (std::string type = module.pluginIdentifier(); !type.empty())
        saved.set(schedule_keys::kActionType, std::move(type));
    if (Value parameters = module.parameters(); parameters.isPresent())
        saved.set(schedule_keys::kActionParameters, std::move(parameters));
    const CalendarDate time = outlets.timeControl->dateValue();
    saved.set(schedule_keys::kIsEnabled, 1);
    saved.set(schedule_keys::kActionHour, hour(time));
    saved.set(schedule_keys::kActionMinute, minute(time));
    for (std::size_t day = 0; day < schedule_keys::kActiveOnDays.size(); ++day) {
        saved.set(schedule_keys::kActiveOnDays[day], stateOf(isTicked(*outlets.activeOn[day])));
    }
    if (_isEditing) {
        if (hasRow(row)) _scheduleArray[static_cast<std::size_t>(row)] = Value(std::move(saved));
    } else if (_isAdding) {
        _scheduleArray.push_back(Value(std::move(saved)));
    }

    if (_plugins) {
        for (const auto& [identifier, each] : *_plugins) each->setParameters(Value());
    }
    closeEditSheet(nullptr);
    outlets.tableView->reloadData();
    postEdited();
    _isEditing = _isAdding = false;
}

void VXConfigurator::closeEditSheet(const Object*) {
    _platform.application.stopModal();
}

}  // namespace quorel
