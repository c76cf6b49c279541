#include "qt/toolkit/Mnemonics.h"

#include <QAbstractButton>
#include <QLabel>

namespace quorel::qt {

namespace {

/// The text with the mark before its first letter that nobody has; without one where all are taken. Two marks are the
/// character itself.
QString marked(QString text, QString& taken) {
    const QLatin1String mark("&"), character("&&");
    const QChar noCharacter(0xFFFF);
    text.replace(character, noCharacter).remove(mark);
    for (int place = 0; place < text.size(); ++place) {
        if (!text[place].isLetter() || taken.contains(text[place], Qt::CaseInsensitive)) continue;
        taken.append(text[place]);
        text.insert(place, mark);
        break;
    }
    return text.replace(noCharacter, character);
}

}  // namespace

void giveMnemonics(QWidget& top) {
    constexpr int kLeastText = 2;  // a day's letter is a picture
    QString taken;
    for (auto* const widget : top.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&top)) continue;
        auto* const button = qobject_cast<QAbstractButton*>(widget);
        auto* const label = qobject_cast<QLabel*>(widget);
        if (button && button->text().size() >= kLeastText) button->setText(marked(button->text(), taken));
        if (label && label->buddy()) label->setText(marked(label->text(), taken));
    }
}

}  // namespace quorel::qt
