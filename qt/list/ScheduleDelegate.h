#pragma once

#include <QStyledItemDelegate>

namespace quorel::qt {

/// Draws the list's cells in the colours of the user's theme: a switch, days as toggles, the action with its line.
class ScheduleDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

    mutable long paintedRows = 0;  ///< since the program began
};

/// One day as a toggle, within the rectangle.
void paintDay(QPainter& painter, const QRect& area, const QPalette& palette, const QString& letter, bool on,
              bool enabled);

/// How wide a column has to be, and how high a row, in this font; the action takes what is left.
int columnWidth(const QFont& font, int column);
int rowHeight(const QFontMetrics& font);

}  // namespace quorel::qt
