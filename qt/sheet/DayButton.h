#pragma once

#include <QPushButton>

namespace quorel::qt {

/// A day that is on or off, as the list shows it.
class DayButton : public QPushButton {
public:
    DayButton(QWidget* parent, int day);  ///< 0 is Monday
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace quorel::qt
