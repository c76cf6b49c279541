#include "qt/toolkit/Views.h"

#include <QPixmap>
#include <QVBoxLayout>

#include "qt/toolkit/Text.h"

namespace quorel::qt {

QWidget* widgetOf(quorel::View& view) {
    const auto* const own = dynamic_cast<const HasWidget*>(&view);
    return own ? own->widget() : nullptr;
}

void place(QWidget* container, QWidget* widget) {
    if (!container || !widget) return;
    if (!container->layout()) {
        auto* const layout = new QVBoxLayout(container);
        layout->setContentsMargins(0, 0, 0, 0);
    }
    container->layout()->addWidget(widget);
    widget->show();
}

void takeOut(QWidget* widget) {
    if (!widget || !widget->parentWidget()) return;
    // Hidden, and still the window's: it comes again with the next sheet.
    QWidget* const container = widget->parentWidget();
    if (container->layout()) container->layout()->removeWidget(widget);
    widget->hide();
}

void PopUpButton::removeAllItems() {
    const QSignalBlocker quiet(native());
    if (native()) native()->clear();
}

void PopUpButton::addItemWithTitle(std::string_view title) {
    const QSignalBlocker quiet(native());
    if (native()) native()->addItem(qString(title));
}

void PopUpButton::addSeparatorItem() {
    if (native()) native()->insertSeparator(native()->count());
}

int PopUpButton::numberOfItems() const {
    return native() ? native()->count() : 0;
}

int PopUpButton::indexOfSelectedItem() const {
    return native() ? native()->currentIndex() : -1;
}

void PopUpButton::selectItemAtIndex(int index) {
    const QSignalBlocker quiet(native());
    if (native() && index >= -1 && index < native()->count()) native()->setCurrentIndex(index);
}

void PopUpButton::selectItemWithTitle(std::string_view title) {
    if (const int index = native() ? native()->findText(qString(title)) : -1; index >= 0) selectItemAtIndex(index);
}

std::optional<std::string> PopUpButton::titleOfSelectedItem() const {
    if (indexOfSelectedItem() < 0) return std::nullopt;
    return stdString(native()->currentText());
}

void TextField::setStringValue(std::string_view text) {
    if (native()) native()->setText(qString(text));
}

void ImageView::setImage(std::shared_ptr<quorel::Image> image) {
    const auto* const own = dynamic_cast<const Image*>(image.get());
    if (native()) native()->setPixmap(own ? QPixmap(qString(own->path)) : QPixmap());
}

CalendarDate DatePicker::dateValue() const {
    CalendarDate date = _date;
    if (!native()) return date;
    date.hour = native()->time().hour();
    date.minute = native()->time().minute();
    return date;
}

void DatePicker::setDateValue(const CalendarDate& date) {
    _date = date;
    if (native()) native()->setTime(QTime(date.hour, date.minute));
}

Rect Window::frame() const {
    const QRect frame = _native ? _native->frameGeometry() : QRect();
    return {double(frame.x()), double(frame.y()), double(frame.width()), double(frame.height())};
}

void Window::setFrameDisplayAnimate(const Rect&, bool, bool) {
    if (_native) _native->adjustSize();
}

void Window::orderOut(const Object*) {
    if (_native) _native->hide();
}

}  // namespace quorel::qt
