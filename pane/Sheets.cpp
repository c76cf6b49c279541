#include "kit/VXUpdateChecker.h"
#include "pane/PlaceholderText.h"
#include "pane/VXPrefPaneController.h"

namespace quorel {

void VXPrefPaneController::about() {
    about(nullptr);
}

void VXPrefPaneController::about(const Object*) {
    assertMainThread();
    if (!_isAwake) return;
    // The one text that is the same in every language.
    outlets.theVersion->setStringValue(
        textWithPlaceholder("version %@", VXUpdateChecker::sharedInstance()->fullVersionString()));
    openSheetOver(outlets.aboutSheet, vxPrefPaneWindow());
}

void VXPrefPaneController::openSheetOver(std::shared_ptr<Window> sheet, std::shared_ptr<Window> window) {
    auto& application = _platform.application;
    if (!window) window = application.modalWindow();
    application.beginSheetModalForWindow(*sheet, window.get());
    application.runModalForWindow(*sheet);
    application.endSheet(*sheet);
    sheet->orderOut(this);
}

void VXPrefPaneController::closeSheet(const Object*) {
    _platform.application.stopModal();
}

}  // namespace quorel
