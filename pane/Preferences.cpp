#include "model/Preferences.h"

#include <cstdint>

#include "kit/MOLLog.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

namespace {

constexpr int kHighestFrequency = 2;
constexpr std::int64_t kPrefsVersion = 1;  // nobody reads it

}  // namespace

void VXPrefPaneController::getPrefs() {
    assertMainThread();
    _preferences = _platform.files.dictionaryWithContentsOfFile(preferences::kFile);
    if (!_preferences.isDictionary()) {
        takeDefaults();
        _base = preferencesToSend().with(wire::kNothingStored, 1);
        return;
    }
    // Any number but 0 means "check"; the menu-bar option is on for 1 alone.
    outlets.checkUpdateAtStartup->setState(stateOf(_preferences[preferences::kCheckUpdates].intValue() != 0));
    const int frequency = _preferences[preferences::kCheckUpdatesFrequency].intValue();
    outlets.popUpUpdate->selectItemAtIndex(frequency > kHighestFrequency ? 0 : frequency);
    outlets.menuCheck->setState(stateOf(_preferences[preferences::kShowInMenuBar].intValue() == 1));
    outlets.networkAdminCheck->setState(kStateOff);
    outlets.networkAdminCheck->setHidden(true);
    _configurator->setScheduleArray(_preferences[preferences::kScheduleArray]);
    outlets.applyButton->setEnabled(false);
    outlets.revertButton->setEnabled(false);
    _base = preferencesToSend();
}

void VXPrefPaneController::takeDefaults() {
    MOLLog("No preferences. Creating defaults...");
    _preferences = Value(Dictionary());
    outlets.checkUpdateAtStartup->setState(kStateOn);
    outlets.popUpUpdate->selectItemAtIndex(0);
    outlets.menuCheck->setState(kStateOn);
    outlets.networkAdminCheck->setState(kStateOn);
    _configurator->setScheduleArray(Value());
}

void VXPrefPaneController::savePrefs() {
    assertMainThread();
    _preferences = preferencesToSend();
    auto* center = VXCommunicationCenter::sharedInstance();
    if (!center->pingDaemon()) return;
    center->postNotificationToDaemon({std::string(kDaemonMustReloadPrefs), std::string(kDaemonName), _preferences},
                                     _base);
    getPrefs();
}

Value VXPrefPaneController::preferencesToSend() const {
    return Dictionary{
        {preferences::kCheckUpdates, outlets.checkUpdateAtStartup->state()},
        {preferences::kCheckUpdatesFrequency, outlets.popUpUpdate->indexOfSelectedItem()},
        {preferences::kShowInMenuBar, outlets.menuCheck->state()},
        {preferences::kEnableNetworkAdministration, 0},
        {preferences::kPrefsVersion, kPrefsVersion},
        {preferences::kScheduleArray, _configurator->scheduleArray()},
    };
}

bool VXPrefPaneController::hasEdits() const {
    return _base.isPresent() && preferencesToSend() != _base.with(wire::kNothingStored, Value());
}

}  // namespace quorel
