#include <cassert>

#include "kit/Additions.h"
#include "model/Schedule.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

std::shared_ptr<VXPrefPaneController> VXPrefPaneController::initWithBundle(std::shared_ptr<Bundle> bundle,
                                                                           ConfiguratorNib& nib, Platform& platform) {
    std::shared_ptr<VXPrefPaneController> controller(new VXPrefPaneController(platform));
    if (!controller->PreferencePane::initWithBundle(std::move(bundle))) return nullptr;
    if (auto* center = VXCommunicationCenter::sharedInstance()) {
        center->setObserver(controller);
        center->createServerConnection();
    }
    controller->_configurator = VXConfigurator::init(controller->bundle(), nib, platform);
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
    const auto view = _configurator ? _configurator->configurationView() : nullptr;
    if (container) clear(*container);
    if (view) view->setFrame(container ? container->bounds() : Rect{});
    if (container && view) {
        container->addSubview(view);
        for (const Anchor anchor : {Anchor::Leading, Anchor::Trailing, Anchor::Top, Anchor::Bottom}) {
            container->constrainAnchorEqualTo(anchor, *view);
        }
    }
    showDaemonAlive(false);
    showUserAgentAlive(false);
}

void VXPrefPaneController::didSelect() {
    assertMainThread();
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
    if (_timerToChekProcesses) {
        _timerToChekProcesses->invalidate();
        _timerToChekProcesses = nullptr;
    }
    savePrefs();
}

void VXPrefPaneController::willEnd() {
    assertMainThread();
    if (isAuthorized()) savePrefs();
}

void VXPrefPaneController::setNeedsSave(const Notification*) {
    // Every pane of the process hears of an edit, also one whose interface file is not loaded yet.
    for (const auto& button : {outlets.applyButton, outlets.revertButton}) {
        if (button) button->setEnabled(true);
    }
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
