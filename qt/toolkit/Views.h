#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QTimeEdit>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "platform/Controls.h"

namespace quorel::qt {

/// What every wrapper of a view has.
class HasWidget {
public:
    virtual ~HasWidget() = default;
    virtual QWidget* widget() const = 0;  ///< null when it has gone
};

/// Wraps a widget, which belongs to its window and may be gone: a wrapper without one takes everything and does
/// nothing. Layouts place widgets, so that frames are told but not taken. Main thread.
template <class Interface, class Native = QWidget>
class Wrapped : public Interface, public HasWidget {
public:
    explicit Wrapped(Native* native) : _native(native) {}

    Rect frame() const override {
        const QRect frame = _native ? _native->geometry() : QRect();
        return {double(frame.x()), double(frame.y()), double(frame.width()), double(frame.height())};
    }
    void setFrame(const Rect&) override {}
    Rect bounds() const override {
        const Rect own = frame();
        return {0, 0, own.width, own.height};
    }
    void setHidden(bool hidden) override {
        if (_native) _native->setVisible(!hidden);
    }
    std::vector<std::shared_ptr<quorel::View>> subviews() const override { return _subviews; }
    void addSubview(std::shared_ptr<quorel::View> subview) override;
    void removeFromSuperview() override;
    void constrainAnchorEqualTo(Anchor, quorel::View&) override {}
    void display() override {
        if (_native) _native->repaint();
    }

    Native* native() const { return _native.data(); }
    QWidget* widget() const override { return _native.data(); }

private:
    QPointer<Native> _native;
    std::vector<std::shared_ptr<quorel::View>> _subviews;
};

using View = Wrapped<quorel::View>;

/// The widget of a view of this face; null for any other.
QWidget* widgetOf(quorel::View& view);
/// Puts the widget below what stands in the container; takes it out again.
void place(QWidget* container, QWidget* widget);
void takeOut(QWidget* widget);

template <class Interface, class Native>
void Wrapped<Interface, Native>::addSubview(std::shared_ptr<quorel::View> subview) {
    place(_native, widgetOf(*subview));
    _subviews.push_back(std::move(subview));
}

template <class Interface, class Native>
void Wrapped<Interface, Native>::removeFromSuperview() {
    takeOut(_native);
}

template <class Interface, class Native>
class Enabled : public Wrapped<Interface, Native> {
public:
    using Wrapped<Interface, Native>::Wrapped;
    void setEnabled(bool enabled) override {
        if (this->native()) this->native()->setEnabled(enabled);
    }
};

class Button : public Enabled<quorel::Button, QAbstractButton> {
public:
    using Enabled::Enabled;
    int state() const override { return native() && native()->isChecked() ? kStateOn : kStateOff; }
    void setState(int state) override {
        if (native()) native()->setChecked(state != kStateOff);
    }
};

class PopUpButton : public Enabled<quorel::PopUpButton, QComboBox> {
public:
    using Enabled::Enabled;
    void removeAllItems() override;
    void addItemWithTitle(std::string_view title) override;
    void addSeparatorItem() override;
    int numberOfItems() const override;
    int indexOfSelectedItem() const override;
    void selectItemAtIndex(int index) override;
    void selectItemWithTitle(std::string_view title) override;
    std::optional<std::string> titleOfSelectedItem() const override;
};

class TextField : public Enabled<quorel::TextField, QLabel> {
public:
    using Enabled::Enabled;
    void setStringValue(std::string_view text) override;
};

/// A picture of the product goes by its name; a label shows it.
class Image : public quorel::Image {
public:
    explicit Image(std::string name) : path(std::move(name)) {}
    const std::string path;
};

class ImageView : public Enabled<quorel::ImageView, QLabel> {
public:
    using Enabled::Enabled;
    void setImage(std::shared_ptr<quorel::Image> image) override;
};

class DatePicker : public Enabled<quorel::DatePicker, QTimeEdit> {
public:
    using Enabled::Enabled;
    CalendarDate dateValue() const override;
    void setDateValue(const CalendarDate& date) override;
    void setDelegate(Object*) override {}

private:
    CalendarDate _date;
};

/// Nothing here takes so long that it would be shown.
class ProgressIndicator : public Wrapped<quorel::ProgressIndicator> {
public:
    ProgressIndicator() : Wrapped(nullptr) {}
    void startAnimation() override {}
    void stopAnimation() override {}
};

/// A window or a sheet; layouts decide about its size.
class Window : public quorel::Window {
public:
    explicit Window(QWidget* native) : _native(native) {}
    Rect frame() const override;
    void setFrameDisplayAnimate(const Rect& frame, bool display, bool animate) override;
    void orderOut(const Object* sender) override;
    QWidget* native() const { return _native.data(); }

private:
    QPointer<QWidget> _native;
};

}  // namespace quorel::qt
