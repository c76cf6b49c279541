#include "qt/list/ScheduleDelegate.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QTime>

#include "qt/list/ScheduleModel.h"
#include "qt/toolkit/Colours.h"
#include "qt/toolkit/Services.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

QColor faded(const QPalette& palette, double share = 0.62) {
    return qt::faded(palette.color(QPalette::Text), palette.color(QPalette::Base), share);
}

constexpr int kMargin = 6;  // beside texts

QFont fontOf(QFont font, int column) {
    if (column == kTimeColumn) font.setBold(true);
    if (column == kTimeColumn) font.setPointSizeF(font.pointSizeF() * 1.35);
    if (column == kNextColumn) font.setPointSizeF(font.pointSizeF() * 0.92);
    return font;
}

void paintSwitch(QPainter& painter, const QStyleOptionViewItem& option, bool on, bool enabled) {
    const QPalette& palette = option.palette;
    const int height = option.fontMetrics.height() * 9 / 8, width = height * 9 / 5;
    QRect track(0, 0, width, height);
    track.moveCenter(option.rect.center());
    painter.setPen(on ? Qt::NoPen : QPen(faded(palette, 0.6), 1.2));
    painter.setBrush(on ? palette.color(QPalette::Highlight) : QColor(Qt::transparent));
    painter.setOpacity(enabled ? 1 : 0.45);
    painter.drawRoundedRect(track, height / 2.0, height / 2.0);
    const double inset = height * 0.16, size = height - 2 * inset;
    const double left = on ? track.right() + 1 - inset - size : track.left() + inset;
    painter.setPen(Qt::NoPen);
    painter.setBrush(on ? palette.color(QPalette::HighlightedText) : faded(palette, 0.6));
    painter.drawEllipse(QRectF(left, track.top() + inset, size, size));
    painter.setOpacity(1);
}

void paintText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index, bool live) {
    const QPalette& palette = option.palette;
    const QRect area = option.rect.adjusted(kMargin, 0, -kMargin, 0);
    const bool isTime = index.column() == kTimeColumn, isNext = index.column() == kNextColumn;
    const QFont font = fontOf(option.font, index.column());
    painter.setFont(font);
    painter.setPen(live && !isNext ? palette.color(QPalette::Text) : faded(palette));
    const QFontMetrics metrics(font);
    const QString text = index.data(Qt::DisplayRole).toString();
    const QString fault = isTime ? QString() : index.data(ScheduleModel::kFaultRole).toString();
    if (isNext && !fault.isEmpty()) painter.setPen(faultColour(palette));
    if (isTime || isNext) {
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                         metrics.elidedText(text, Qt::ElideRight, area.width()));
        return;
    }
    const QString line = fault.isEmpty() ? index.data(ScheduleModel::kLineRole).toString() : fault;
    if (line.isEmpty()) {
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                         metrics.elidedText(text, Qt::ElideRight, area.width()));
        return;
    }
    QFont small = font;
    small.setPointSizeF(font.pointSizeF() * 0.88);
    const QFontMetrics smaller(small);
    const int whole = metrics.height() + smaller.height(), top = area.top() + (area.height() - whole) / 2;
    painter.drawText(QRect(area.left(), top, area.width(), metrics.height()), Qt::AlignLeft,
                     metrics.elidedText(text, Qt::ElideRight, area.width()));
    painter.setFont(small);
    painter.setPen(fault.isEmpty() ? faded(palette) : faultColour(palette));
    painter.drawText(QRect(area.left(), top + metrics.height(), area.width(), smaller.height()), Qt::AlignLeft,
                     smaller.elidedText(line, Qt::ElideRight, area.width()));
}

}  // namespace

void paintDay(QPainter& painter, const QRect& area, const QPalette& palette, const QString& letter, bool on,
              bool enabled) {
    const int size = std::min(painter.fontMetrics().height() * 3 / 2, area.width() - 4);
    QRect circle(0, 0, size, size);
    circle.moveCenter(area.center());
    painter.setOpacity(enabled ? 1 : 0.45);
    painter.setPen(on ? Qt::NoPen : QPen(faded(palette, 0.35), 1));
    painter.setBrush(on ? palette.color(QPalette::Highlight) : QColor(Qt::transparent));
    painter.drawEllipse(circle);
    painter.setPen(on ? palette.color(QPalette::HighlightedText) : faded(palette));
    painter.drawText(circle, Qt::AlignCenter, letter);
    painter.setOpacity(1);
}

void ScheduleDelegate::paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const {
    QStyleOptionViewItem option = given;
    option.palette.setCurrentColorGroup(QPalette::Active);
    if (index.column() == kSwitchColumn) ++paintedRows;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool selected = option.state & QStyle::State_Selected;
    if (selected) {
        QColor ground = option.palette.color(QPalette::Highlight);
        ground.setAlphaF(0.16F);
        painter->fillRect(option.rect, ground);
    }
    const bool enabled = index.flags() & Qt::ItemIsEnabled;
    const bool on = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    if (index.column() == kSwitchColumn) {
        paintSwitch(*painter, option, on, enabled);
    } else if (index.column() >= kFirstDayColumn && index.column() < kNextColumn) {
        painter->setFont(option.font);
        paintDay(*painter, option.rect, option.palette, index.data(Qt::DisplayRole).toString(), on, enabled);
    } else {
        paintText(*painter, option, index, enabled && index.data(ScheduleModel::kOnRole).toBool());
    }
    QColor line = option.palette.color(QPalette::Text);
    line.setAlphaF(0.12F);
    painter->setPen(line);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (option.state & QStyle::State_HasFocus) {
        QPen focus(option.palette.color(QPalette::Highlight), 2);
        painter->setPen(focus);
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(QRectF(option.rect).adjusted(2, 2, -2, -3), 5, 5);
    }
    painter->restore();
}

QSize ScheduleDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return {columnWidth(option.font, index.column()), rowHeight(option.fontMetrics)};
}

/// The whole cell is the toggle, which takes no good aim.
bool ScheduleDelegate::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) {
    const Qt::ItemFlags flags = index.flags();
    if (!(flags & Qt::ItemIsUserCheckable) || !(flags & Qt::ItemIsEnabled)) return false;
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto* const mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton || !option.rect.contains(mouse->pos())) return false;
    } else if (event->type() == QEvent::KeyPress) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Space || key->isAutoRepeat()) return false;
    } else {
        return false;
    }
    const bool on = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, on ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

int columnWidth(const QFont& font, int column) {
    const int em = QFontMetrics(font).height();
    if (column == kSwitchColumn) return em * 11 / 4;
    if (column == kActionColumn) return em * 10;
    if (column != kTimeColumn && column != kNextColumn) return em * 7 / 4;
    const QFontMetrics own(fontOf(font, column));
    const std::string latest = stdString(QLocale().toString(QTime(22, 58), shortTimeFormat()));
    int width = own.horizontalAdvance(qString(latest));
    if (column == kNextColumn)
        for (const char* const day : {translated("today {1}"), translated("tomorrow {1}")})
            width = std::max(width, own.horizontalAdvance(qString(filled(day, {latest}))));
    return width + 2 * kMargin + em / 3;
}

int rowHeight(const QFontMetrics& font) {
    return font.height() * 5 / 2 + 6;
}

}  // namespace quorel::qt
