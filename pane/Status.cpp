#include "kit/Additions.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

namespace {

constexpr auto kPollingPause = std::chrono::seconds(10);

}  // namespace

// Every block holds the controller strongly: the lights stay true for as long as the host runs.

void VXPrefPaneController::checkProcesses() {
    const auto self = shared_from_this();
    const auto queue = _platform.dispatch.createQueue("-[VXPrefPaneController checkProcesses]");
    queue->sync([self] {
        self->_allowProcessLaunch = false;
        self->checkDaemon();
        self->checkUserAgent();
        self->_allowProcessLaunch = true;
        const auto next = self->_platform.dispatch.createQueue("-[VXPrefPaneController checkProcesses]_block_invoke");
        next->after(kPollingPause, [self] { self->checkProcesses(); });
    });
}

void VXPrefPaneController::checkDaemon() {
    const bool alive = VXCommunicationCenter::sharedInstance()->pingDaemon();
    _platform.dispatch.mainQueue().async([self = shared_from_this(), alive] { self->showDaemonAlive(alive); });
}

void VXPrefPaneController::checkUserAgent() {
    const bool alive = VXCommunicationCenter::sharedInstance()->pingAgentOfUser(_platform.effectiveUserId);
    _platform.dispatch.mainQueue().async([self = shared_from_this(), alive] { self->showUserAgentAlive(alive); });
}

void VXPrefPaneController::showDaemonAlive(bool alive) {
    outlets.statusDaemon->setStringValue(localized(alive ? "Demon actif" : "Demon non lance"));
    showLight(*outlets.statusDaemonImageView, alive);
}

void VXPrefPaneController::showUserAgentAlive(bool alive) {
    outlets.statusUserAgent->setStringValue(localized(alive ? "User Agent actif" : "User Agent non lance"));
    showLight(*outlets.statusUserAgentImageView, alive);
}

void VXPrefPaneController::showLight(ImageView& light, bool alive) {
    light.setImage(imageNamedInBundleOfInstance(alive ? "Available" : "Unavailable", *this));
}

}  // namespace quorel
