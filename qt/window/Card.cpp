#include "qt/window/Card.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>

#include "qt/toolkit/Colours.h"

namespace quorel::qt {

namespace {

QColor hintColour(const QPalette& palette) {
    return faded(palette.color(QPalette::WindowText), palette.color(QPalette::Window));
}

/// In a colour that is made of the theme's.
class Toned : public QLabel {
public:
    Toned(const QString& text, QWidget* parent, QColor (*colour)(const QPalette&))
        : QLabel(text, parent), _colour(colour) {
        recolour();
    }

protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) recolour();
    }

private:
    void recolour() {
        const QPalette theme = QApplication::palette();
        QPalette own;
        own.setColor(QPalette::WindowText, _colour(theme));
        setPalette(own);
    }
    QColor (*const _colour)(const QPalette&);
};

}  // namespace

Card::Card(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
}

QLabel* makeLabel(QWidget* parent, Weight weight, const QString& text) {
    auto* const label = weight == Weight::kHint    ? new Toned(text, parent, hintColour)
                        : weight == Weight::kFault ? new Toned(text, parent, faultColour)
                                                   : new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    const double scale = weight == Weight::kTitle     ? 1.35
                         : weight == Weight::kHeading ? 1.12
                         : weight >= Weight::kSmall   ? 0.92
                                                      : 1;
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setBold(weight == Weight::kTitle || weight == Weight::kHeading);
    label->setFont(font);
    return label;
}

}  // namespace quorel::qt
