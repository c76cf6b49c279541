#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Application.h"
#include "platform/System.h"

namespace quorel::headless {

class Window : public quorel::Window {
public:
    Rect frame() const override { return _frame; }
    void setFrameDisplayAnimate(const Rect& frame, bool display, bool animate) override {
        _frame = frame;
        animated = display && animate;
    }
    void orderOut(const Object* sender) override {
        visible = false;
        orderOutSender = sender;
    }

    void setFrame(const Rect& frame) { _frame = frame; }
    bool visible = false;
    bool animated = false;
    const Object* orderOutSender = nullptr;

private:
    Rect _frame;
};

struct Alert {
    std::string title;
    std::string message;
    std::string defaultButton;
    std::optional<std::string> alternateButton;
};

/// An application whose user is a script: what was queued with `duringNextModal` happens inside the next modal loop.
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
    void beep() override { ++beeps; }

    /// A loop whose script ends without stopModal would wait for ever; it throws std::logic_error instead.
    void duringNextModal(std::function<void()> script) { _scripts.push_back(std::move(script)); }

    struct Sheet {
        quorel::Window* sheet;
        quorel::Window* parent;  ///< null: begun without a window
    };
    std::shared_ptr<Window> main;
    std::vector<Sheet> begun;            ///< every sheet ever begun
    std::vector<quorel::Window*> ended;  ///< every sheet ever ended
    std::vector<Alert> alerts;           ///< every alert ever shown
    std::function<void()> duringAlert;   ///< while an alert waits
    int alertAnswer = kAlertDefaultReturn;
    int beeps = 0;
    int stops = 0;  ///< stopModal sent, with or without a loop

private:
    struct Loop {
        quorel::Window* window;
        bool stopped = false;
    };
    std::deque<std::function<void()>> _scripts;
    std::vector<Loop> _loops;
};

class Workspace : public quorel::Workspace {
public:
    bool openURL(std::string_view url) override {
        opened.emplace_back(url);
        return true;
    }
    std::vector<std::string> opened;
};

}  // namespace quorel::headless
