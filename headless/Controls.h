#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Controls.h"

namespace quorel::headless {

/// Controls that remember what they were told, and can be used as a person uses them. Main thread.

using Subviews = std::vector<std::shared_ptr<quorel::View>>;

/// Where a view hangs: the list that holds it, while its superview lives.
struct Hanging {
    virtual ~Hanging() = default;
    std::weak_ptr<Subviews> superview;
};

template <class Interface>
class BasicView : public Interface, public Hanging {
public:
    Rect frame() const override { return _frame; }
    void setFrame(const Rect& frame) override { _frame = frame; }
    Rect bounds() const override { return {0, 0, _frame.width, _frame.height}; }
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden) override { _hidden = hidden; }

    Subviews subviews() const override { return *_subviews; }
    void addSubview(std::shared_ptr<quorel::View> subview) override {
        subview->removeFromSuperview();
        if (auto* hanging = dynamic_cast<Hanging*>(subview.get())) hanging->superview = _subviews;
        _subviews->push_back(std::move(subview));
    }
    void removeFromSuperview() override {
        const auto siblings = superview.lock();
        superview.reset();
        if (!siblings) return;
        const auto own =
            std::find_if(siblings->begin(), siblings->end(), [this](const auto& view) { return view.get() == this; });
        if (own == siblings->end()) return;
        const auto keepAlive = *own;
        siblings->erase(own);
    }
    void constrainAnchorEqualTo(Anchor anchor, quorel::View& other) override { pinned.emplace_back(anchor, &other); }
    void display() override {
        ++displays;
        if (onDisplay) onDisplay();
    }

    std::vector<std::pair<Anchor, quorel::View*>> pinned;  ///< in the order of activation
    int displays = 0;                                      ///< forced redraws
    std::function<void()> onDisplay;

private:
    Rect _frame;
    bool _hidden = false;
    std::shared_ptr<Subviews> _subviews = std::make_shared<Subviews>();
};

using View = BasicView<quorel::View>;

template <class Interface>
class BasicControl : public BasicView<Interface> {
public:
    bool isEnabled() const { return _enabled; }
    void setEnabled(bool enabled) override { _enabled = enabled; }

    std::function<void()> action;  ///< what the interface file connected

    /// A person's use of the control: false, and nothing sent, while it is hidden or disabled.
    bool act() {
        if (!_enabled || this->isHidden()) return false;
        if (action) action();
        return true;
    }

private:
    bool _enabled = true;
};

class Button : public BasicControl<quorel::Button> {
public:
    int state() const override { return _state; }
    void setState(int state) override { _state = state; }

    bool isSwitch = false;  ///< a click changes the state before the action is sent

    bool click() {
        if (isSwitch && isEnabled() && !isHidden()) _state = _state == kStateOff ? kStateOn : kStateOff;
        return act();
    }

private:
    int _state = kStateOff;
};

class PopUpButton : public BasicControl<quorel::PopUpButton> {
public:
    void removeAllItems() override {
        items.clear();
        _selected = -1;
    }
    void addItemWithTitle(std::string_view title) override { append(std::string(title)); }
    void addSeparatorItem() override { append(std::nullopt); }
    int numberOfItems() const override { return static_cast<int>(items.size()); }
    int indexOfSelectedItem() const override { return _selected; }
    void selectItemAtIndex(int index) override {
        if (index >= -1 && index < numberOfItems()) _selected = index;
    }
    void selectItemWithTitle(std::string_view title) override {
        const auto item = std::find(items.begin(), items.end(), std::string(title));
        if (item != items.end()) _selected = static_cast<int>(item - items.begin());
    }
    std::optional<std::string> titleOfSelectedItem() const override {
        return _selected < 0 ? std::nullopt : items[static_cast<std::size_t>(_selected)];
    }

    std::vector<std::optional<std::string>> items;  ///< titles; a separator has none

    bool pick(std::string_view title) {
        if (!isEnabled() || isHidden()) return false;
        selectItemWithTitle(title);
        return act();
    }

private:
    /// The first item of an empty pop-up becomes the selected one, as on screen.
    void append(std::optional<std::string> title) {
        items.push_back(std::move(title));
        if (items.size() == 1) _selected = 0;
    }
    int _selected = -1;
};

class TextField : public BasicControl<quorel::TextField> {
public:
    std::string stringValue() const { return _text; }
    void setStringValue(std::string_view text) override { _text = text; }

private:
    std::string _text;
};

class Image : public quorel::Image {
public:
    explicit Image(std::string_view imageName) : name(imageName) {}
    const std::string name;
};

class ImageView : public BasicControl<quorel::ImageView> {
public:
    std::shared_ptr<quorel::Image> image() const { return _image; }
    void setImage(std::shared_ptr<quorel::Image> image) override { _image = std::move(image); }

    /// Empty when nothing is shown.
    std::string imageName() const {
        const auto* image = dynamic_cast<const Image*>(_image.get());
        return image ? image->name : std::string();
    }

private:
    std::shared_ptr<quorel::Image> _image;
};

class DatePicker : public BasicControl<quorel::DatePicker> {
public:
    CalendarDate dateValue() const override { return _date; }
    void setDateValue(const CalendarDate& date) override { _date = date; }
    void setDelegate(Object* newDelegate) override { delegate = newDelegate; }

    Object* delegate = nullptr;

private:
    CalendarDate _date;
};

class ProgressIndicator : public BasicView<quorel::ProgressIndicator> {
public:
    void startAnimation() override {
        running = true;
        ++starts;
    }
    void stopAnimation() override { running = false; }

    bool running = false;
    int starts = 0;
};

}  // namespace quorel::headless
