#include "qt/toolkit/Application.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "qt/toolkit/Text.h"

namespace quorel::qt {

namespace {

QWidget* nativeOf(quorel::Window* window) {
    const auto* const own = dynamic_cast<Window*>(window);
    return own ? own->native() : nullptr;
}

}  // namespace

std::shared_ptr<quorel::Window> Application::modalWindow() const {
    if (_loops.empty()) return nullptr;
    // The window is owned by whoever runs it; the loop only points at it.
    return {std::shared_ptr<void>(), _loops.back().window};
}

void Application::beginSheetModalForWindow(quorel::Window& sheet, quorel::Window*) {
    QWidget* const native = nativeOf(&sheet);
    if (!native) return;
    native->setWindowModality(Qt::WindowModal);
    native->show();
    native->activateWindow();
}

void Application::runModalForWindow(quorel::Window& window) {
    QEventLoop events;
    _loops.push_back({&window, &events});
    events.exec();
    _loops.pop_back();
}

void Application::stopModal() {
    if (!_loops.empty()) _loops.back().events->quit();
}

void Application::endSheet(quorel::Window&) {}

int Application::runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                               std::optional<std::string_view> alternateButton) {
    QMessageBox alert(main ? main->native() : nullptr);
    alert.setTextFormat(Qt::PlainText);
    alert.setWindowTitle(qString(title));
    alert.setText(qString(title));
    alert.setInformativeText(qString(message));
    const QAbstractButton* const chosen = alert.addButton(qString(defaultButton), QMessageBox::AcceptRole);
    if (alternateButton) alert.addButton(qString(*alternateButton), QMessageBox::RejectRole);
    alert.exec();
    return alert.clickedButton() == chosen ? kAlertDefaultReturn : kAlertAlternateReturn;
}

void Application::beep() {
    QApplication::beep();
}

}  // namespace quorel::qt
