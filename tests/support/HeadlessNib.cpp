#include "tests/support/HeadlessNib.h"

namespace quorel::test {

ConfiguratorInterface::ConfiguratorInterface() {
    table->columns.push_back(std::make_shared<headless::TableColumn>(schedule_keys::kIsEnabled));
    table->columns.push_back(std::make_shared<headless::TableColumn>("Infos"));
    for (std::size_t day = 0; day < days.size(); ++day) {
        table->columns.push_back(std::make_shared<headless::TableColumn>(schedule_keys::kActiveOnDays[day]));
        days[day] = std::make_shared<headless::Button>();
        days[day]->isSwitch = true;
    }
    startupEdit->isSwitch = wakeUpEdit->isSwitch = true;
    editSheet->setFrame({200, 300, 500, 400});
    editCustomView->setFrame({20, 60, 460, 100});
    blankOptionsView->setFrame({0, 0, 460, 40});
}

bool ConfiguratorInterface::loadNibNamedOwner(std::string_view name, VXConfigurator& owner) {
    if (!loadable || name != "Configurator") return false;
    table->dataSource = &owner;
    addButton->action = [this, &owner] { owner.addSchedule(addButton.get()); };
    deleteButton->action = [this, &owner] { owner.deleteSchedule(deleteButton.get()); };
    editButton->action = [this, &owner] { owner.editSchedule(editButton.get()); };
    popUpType->action = [this, &owner] { owner.selectActionType(popUpType.get()); };
    selectAllButton->action = [this, &owner] { owner.checkAllDays(selectAllButton.get()); };
    saveButton->action = [this, &owner] { owner.saveSchedule(saveButton.get()); };
    cancelButton->action = [this, &owner] { owner.closeEditSheet(cancelButton.get()); };
    auto& outlets = owner.outlets;
    for (std::size_t day = 0; day < days.size(); ++day) {
        const auto box = days[day];
        outlets.activeOn[day] = box;
        box->action = [&owner, sender = box.get()] { owner.checkboxAction(sender); };
    }
    for (const auto& box : {startupEdit, wakeUpEdit}) {
        box->action = [&owner, sender = box.get()] { owner.checkboxAction(sender); };
    }
    outlets.mainView = mainView;
    outlets.tableView = table;
    outlets.addButton = addButton;
    outlets.deleteButton = deleteButton;
    outlets.editButton = editButton;
    outlets.progressMain = progressMain;
    outlets.editSheet = editSheet;
    outlets.editCustomView = editCustomView;
    outlets.blankOptionsView = blankOptionsView;
    outlets.timeControl = timeControl;
    outlets.selectAllButton = selectAllButton;
    outlets.popUpType = popUpType;
    outlets.startupEdit = startupEdit;
    outlets.wakeUpEdit = wakeUpEdit;
    outlets.actionStateEdit = actionStateEdit;
    outlets.progressEdit = progressEdit;
    owner.awakeFromNib();
    return true;
}

}  // namespace quorel::test
