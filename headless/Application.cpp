#include "headless/Application.h"

#include <stdexcept>

namespace quorel::headless {

std::shared_ptr<quorel::Window> Application::modalWindow() const {
    if (_loops.empty()) return nullptr;
    // The window is owned by whoever runs it; the loop only points at it.
    return {std::shared_ptr<void>(), _loops.back().window};
}

void Application::beginSheetModalForWindow(quorel::Window& sheet, quorel::Window* window) {
    begun.push_back({&sheet, window});
    if (auto* own = dynamic_cast<Window*>(&sheet)) own->visible = true;
}

void Application::runModalForWindow(quorel::Window& window) {
    _loops.push_back({&window});
    const std::size_t depth = _loops.size();
    while (!_loops[depth - 1].stopped && !_scripts.empty()) {
        const auto script = std::move(_scripts.front());
        _scripts.pop_front();
        script();
    }
    const bool stopped = _loops[depth - 1].stopped;
    _loops.pop_back();
    if (!stopped) throw std::logic_error("a modal loop was left without an end");
}

void Application::stopModal() {
    ++stops;
    if (!_loops.empty()) _loops.back().stopped = true;
}

void Application::endSheet(quorel::Window& sheet) {
    ended.push_back(&sheet);
}

int Application::runAlertPanel(std::string_view title, std::string_view message, std::string_view defaultButton,
                               std::optional<std::string_view> alternateButton) {
    Alert alert{std::string(title), std::string(message), std::string(defaultButton), std::nullopt};
    if (alternateButton) alert.alternateButton = *alternateButton;
    alerts.push_back(std::move(alert));
    if (duringAlert) duringAlert();
    return alertAnswer;
}

}  // namespace quorel::headless
