#include "qt/window/Card.h"

#include <QLabel>

#include "qt/toolkit/Colours.h"

namespace quorel::qt {

Card::Card(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
}

QLabel* makeLabel(QWidget* parent, Weight weight, const QString& text) {
    auto* const label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    const double scale = weight == Weight::kTitle     ? 1.35
                         : weight == Weight::kHeading ? 1.12
                         : weight >= Weight::kSmall   ? 0.92
                                                      : 1;
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(weight == Weight::kTitle || weight == Weight::kHeading);
    label->setFont(font);
    if (weight == Weight::kHint) {
        QPalette colours = label->palette();
        colours.setColor(QPalette::WindowText,
                         faded(colours.color(QPalette::WindowText), colours.color(QPalette::Window)));
        label->setPalette(colours);
    }
    return label;
}

}  // namespace quorel::qt
