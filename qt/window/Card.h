#pragma once

#include <QFrame>

class QLabel;

namespace quorel::qt {

/// A part of the window, set off from the ground by a frame of its own.
class Card : public QFrame {
public:
    explicit Card(QWidget* parent);
};

enum class Weight { kTitle, kHeading, kText, kSmall, kHint, kFault };
/// A line of text in the window's own scale and colours, whatever the theme becomes; nothing in it is interpreted.
QLabel* makeLabel(QWidget* parent, Weight weight, const QString& text = {});

}  // namespace quorel::qt
