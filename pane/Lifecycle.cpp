#include <cassert>

#include "kit/Additions.h"
#include "model/Schedule.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

std::shared_ptr<VXPrefPaneController> VXPrefPaneController::initWithBundle(std::shared_ptr<Bundle> bundle,
                                                                           ConfiguratorNib& nib, Platform& platform) {
    std::shared_ptr<VXPrefPaneController> controller(new VXPrefPaneController(platform));
    if (!controller->PreferencePane::initWithBundle(std::move(bundle))) return nullptr;
    VXCommunicationCenter::sharedInstance()->setObserver(controller);
    VXCommunicationCenter::sharedInstance()->createServerConnection();
    controller->_configurator = VXConfigurator::init(controller->bundle(), nib, platform);
    if (!controller->_configurator) return nullptr;
    controller->initNotifications();
    return controller;
}

void VXPrefPaneController::initNotifications() {
    // The observer is never removed: the center must neither keep the controller nor reach for one that is gone.
    const auto weak = weak_from_this();
    _platform.defaultCenter.addObserver(kMOLConfiguratorHasBeenEditedNotification,
                                        [weak](const Notification& notification) {
                                            if (const auto self = weak.lock()) self->setNeedsSave(&notification);
                                        });
}

void VXPrefPaneController::awakeFromNib() {
    assertMainThread();
    const auto& container = outlets.configView;
    const auto& view = _configurator->configurationView();
    if (container) clear(*container);
    view->setFrame(container ? container->bounds() : Rect{});
    if (container) {
        container->addSubview(view);
        for (const Anchor anchor : {Anchor::Leading, Anchor::Trailing, Anchor::Top, Anchor::Bottom}) {
            container->constrainAnchorEqualTo(anchor, *view);
        }
    }
    showDaemonAlive(false);
    showUserAgentAlive(false);
    _isAwake = true;
}

void VXPrefPaneController::didSelect() {
    assertMainThread();
    if (!_isAwake) return;
    _allowProcessLaunch = false;
    _preferences = Value();
    outlets.popUpUpdate->removeAllItems();
    for (const char* key : {"Quotidien", "Hebdomadaire", "Mensuel"}) {
        outlets.popUpUpdate->addItemWithTitle(localized(key));
    }
    getPrefs();
    if (prefsAreUnlocked()) {
        prefsUnlocked();
    } else {
        prefsLocked();
    }
    checkProcesses();
}

void VXPrefPaneController::willUnselect() {
    assertMainThread();
    if (_base.isAbsent()) return;  // never selected
    if (_timerToChekProcesses) {
        _timerToChekProcesses->invalidate();
        _timerToChekProcesses = nullptr;
    }
    savePrefs();
}

void VXPrefPaneController::willEnd() {
    assertMainThread();
    if (hasEdits() && isAuthorized()) savePrefs();
}

void VXPrefPaneController::setNeedsSave(const Notification*) {
    if (!_isAwake) return;  // every pane of the process hears of an edit
    outlets.applyButton->setEnabled(true);
    outlets.revertButton->setEnabled(true);
}

void VXPrefPaneController::applyNow(const Object*) {
    savePrefs();
}

void VXPrefPaneController::revert(const Object*) {
    getPrefs();
}

void VXPrefPaneController::checkboxAction(const Object* sender) {
    outlets.popUpUpdate->setEnabled(outlets.checkUpdateAtStartup->state() != kStateOff);
    if (sender) setNeedsSave(nullptr);
}

std::string VXPrefPaneController::localized(std::string_view key) const {
    return bundle()->localizedStringForKeyValueTable(key, "", "");
}

void VXPrefPaneController::assertMainThread() const {
    assert(std::this_thread::get_id() == _mainThread);
}

}  // namespace quorel
