#pragma once

#include "platform/Application.h"

namespace quorel::appkit {

/// The host application. Main thread.
class Application : public quorel::Application {
public:
    std::shared_ptr<quorel::Window> mainWindow() const override;
    std::shared_ptr<quorel::Window> modalWindow() const override;
    void beginSheetModalForWindow(quorel::Window &sheet, quorel::Window *window) override;
    void runModalForWindow(quorel::Window &window) override;
    void stopModal() override;
    void endSheet(quorel::Window &sheet) override;
    int runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                      std::optional<std::string_view> alternateButton) override;
    void beep() override;
};

}  // namespace quorel::appkit
