#include "qt/sheet/DayButton.h"

#include <QPainter>

#include "qt/list/ScheduleDelegate.h"
#include "qt/list/ScheduleModel.h"

namespace quorel::qt {

DayButton::DayButton(QWidget* parent, int day) : QPushButton(dayName(day, DayForm::kNarrow), parent) {
    setCheckable(true);
    setAutoDefault(false);
    setAccessibleName(dayName(day, DayForm::kLong));
    setToolTip(accessibleName());
}

QSize DayButton::sizeHint() const {
    const int size = fontMetrics().height() * 2;
    return {size, size};
}

void DayButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintDay(painter, rect(), palette(), text(), isChecked(), isEnabled());
    if (!hasFocus()) return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 6, 6);
}

}  // namespace quorel::qt
