#include "tests/support/HeadlessNib.h"

namespace quorel::test {

PaneInterface::PaneInterface() {
    configView->setFrame({20, 150, 530, 250});
    authButton->isSwitch = checkUpdateAtStartup->isSwitch = menuCheck->isSwitch = networkAdminCheck->isSwitch = true;
}

void PaneInterface::load(VXPrefPaneController& owner) {
    applyButton->action = [this, &owner] { owner.applyNow(applyButton.get()); };
    revertButton->action = [this, &owner] { owner.revert(revertButton.get()); };
    authButton->action = [this, &owner] { owner.toggleAuth(authButton.get()); };
    checkUpdatesButton->action = [this, &owner] { owner.checkUpdates(checkUpdatesButton); };
    aboutButton->action = [this, &owner] { owner.about(aboutButton.get()); };
    closeButton->action = [this, &owner] { owner.closeSheet(closeButton.get()); };
    checkUpdateAtStartup->action = [this, &owner] { owner.checkboxAction(checkUpdateAtStartup.get()); };
    popUpUpdate->action = [this, &owner] { owner.checkboxAction(popUpUpdate.get()); };
    menuCheck->action = [this, &owner] { owner.checkboxAction(menuCheck.get()); };
    owner.outlets = {configView,      aboutSheet,
                     applyButton,     revertButton,
                     authButton,      checkUpdateAtStartup,
                     lockDescLabel,   popUpUpdate,
                     menuCheck,       networkAdminCheck,
                     statusDaemon,    statusDaemonImageView,
                     statusUserAgent, statusUserAgentImageView,
                     theVersion};
    owner.awakeFromNib();
}

}  // namespace quorel::test
