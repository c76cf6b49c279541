#include "model/Preferences.h"

#include <cstdint>

#include "kit/MOLLog.h"
#include "kit/VXUpdateChecker.h"
#include "model/Dictionary.h"
#include "model/Fnv1a.h"
#include "model/Names.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

namespace {

constexpr int kHighestFrequency = 2;

/// Names the version text by a number that is the same in every process: a save without an edit then equals what
/// is stored. Nobody reads a version out of it.
std::int64_t identityOf(std::string_view versionText) {
    Fnv1a hash;
    hash.add(versionText);
    return static_cast<std::int64_t>(hash.result());
}

int stateOf(bool on) {
    return on ? kStateOn : kStateOff;
}

}  // namespace

void VXPrefPaneController::getPrefs() {
    assertMainThread();
    _preferences = _platform.files.dictionaryWithContentsOfFile(preferences::kFile);
    if (!_preferences.isDictionary()) {
        takeDefaults();
        return;
    }
    // Any number but 0 means "check"; the menu-bar option is on for 1 alone.
    outlets.checkUpdateAtStartup->setState(stateOf(_preferences[preferences::kCheckUpdates].intValue() != 0));
    const int frequency = _preferences[preferences::kCheckUpdatesFrequency].intValue();
    outlets.popUpUpdate->selectItemAtIndex(frequency > kHighestFrequency ? 0 : frequency);
    outlets.menuCheck->setState(stateOf(_preferences[preferences::kShowInMenuBar].intValue() == 1));
    outlets.networkAdminCheck->setState(kStateOff);
    outlets.networkAdminCheck->setHidden(true);
    if (_configurator) _configurator->setScheduleArray(_preferences[preferences::kScheduleArray]);
    outlets.applyButton->setEnabled(false);
    outlets.revertButton->setEnabled(false);
}

void VXPrefPaneController::takeDefaults() {
    MOLLog("No preferences. Creating defaults...");
    _preferences = Value(Dictionary());
    outlets.checkUpdateAtStartup->setState(kStateOn);
    outlets.popUpUpdate->selectItemAtIndex(0);
    outlets.menuCheck->setState(kStateOn);
    outlets.networkAdminCheck->setState(kStateOn);
    if (_configurator) _configurator->setScheduleArray(Value());
}

void VXPrefPaneController::savePrefs() {
    assertMainThread();
    const auto* checker = VXUpdateChecker::sharedInstance();
    const auto version = checker ? checker->versionString() : std::nullopt;
    // Without a configurator what was read goes back as it was: the list on the computer must not be lost.
    const Value schedules =
        _configurator ? Value(_configurator->scheduleArray()) : _preferences[preferences::kScheduleArray];
    _preferences = Value(Dictionary{
        {preferences::kCheckUpdates, outlets.checkUpdateAtStartup->state()},
        {preferences::kCheckUpdatesFrequency, outlets.popUpUpdate->indexOfSelectedItem()},
        {preferences::kShowInMenuBar, outlets.menuCheck->state()},
        {preferences::kEnableNetworkAdministration, 0},
        {preferences::kPrefsVersion, version ? identityOf(*version) : std::int64_t{0}},
        {preferences::kScheduleArray, schedules},
    });

    auto* center = VXCommunicationCenter::sharedInstance();
    if (!center || !center->pingDaemon()) return;
    center->postNotificationToDaemon({std::string(kDaemonMustReloadPrefs), std::string(kDaemonName), _preferences});
    getPrefs();
}

}  // namespace quorel
