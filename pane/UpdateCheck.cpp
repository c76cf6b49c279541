#include "kit/VXUpdateChecker.h"
#include "model/Wire.h"
#include "pane/PlaceholderText.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

void VXPrefPaneController::checkUpdates(std::shared_ptr<const Object> sender) {
    const auto queue = _platform.dispatch.createQueue("-[VXPrefPaneController checkUpdates:]");
    queue->async([self = shared_from_this(), sender = std::move(sender)] { self->runUpdateCheck(sender.get()); });
}

void VXPrefPaneController::runUpdateCheck(const Object* sender) {
    auto* center = VXCommunicationCenter::sharedInstance();
    if (center->pingAgentOfUser(_platform.effectiveUserId)) {
        // The agent has a voice of its own; two programs must not report the same check.
        center->postNotificationToAgentOfUser(
            {std::string(kUserAgentMustCheckUpdates), std::string(kUserAgentName), Value()}, _platform.effectiveUserId);
        return;
    }
    const auto self = shared_from_this();
    auto* checker = VXUpdateChecker::sharedInstance();
    if (!checker->updateLatestVersionDictionary()) {
        if (!sender) return;
        _platform.dispatch.mainQueue().async([self] {
            self->_platform.application.runAlertPanel(self->localized("Verification impossible"),
                                                      self->localized("Acces au site impossible"), "OK", std::nullopt);
        });
        return;
    }
    const auto latest = checker->latestVersion();
    if (!latest && _allowProcessLaunch) {
        _platform.dispatch.mainQueue().sync([self] {
            self->_platform.application.runAlertPanel(self->localized("Logiciel a jour"), self->localized("Version OK"),
                                                      "OK", std::nullopt);
        });
        return;
    }
    // Also without a newer version while a polling cycle is pinging: "up to date" is said only between cycles.
    _platform.dispatch.mainQueue().async([self, latest] { self->offerNewerVersion(latest); });
}

void VXPrefPaneController::offerNewerVersion(const std::optional<std::string>& version) {
    const std::string url = VXUpdateChecker::sharedInstance()->latestVersionURL();
    const std::string message = textWithPlaceholder(localized("Telecharger la version %@ ?"), version);
    const std::string cancel = localized("Annuler");
    const int answer = _platform.application.runAlertPanel(localized("Nouvelle version dispo"), message, "OK",
                                                           std::string_view(cancel));
    if (answer == kAlertDefaultReturn) _platform.sharedWorkspace.openURL(url);
}

}  // namespace quorel
