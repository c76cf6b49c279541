#pragma once

#include <QEventLoop>
#include <QPointer>
#include <vector>

#include "platform/Application.h"
#include "qt/toolkit/Views.h"

namespace quorel::qt {

/// Sheets as window-modal windows over their parents. Main thread.
class Application : public quorel::Application {
public:
    std::shared_ptr<quorel::Window> mainWindow() const override { return main; }
    std::shared_ptr<quorel::Window> modalWindow() const override;
    void beginSheetModalForWindow(quorel::Window& sheet, quorel::Window* window) override;
    void runModalForWindow(quorel::Window& window) override;
    void stopModal() override;
    void endSheet(quorel::Window& sheet) override;
    int runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                      std::optional<std::string_view> alternateButton) override;
    void beep() override;

    std::shared_ptr<Window> main;  ///< set by the composition root

private:
    struct Loop {
        quorel::Window* window;
        QEventLoop* events;
    };
    std::vector<Loop> _loops;
};

}  // namespace quorel::qt
