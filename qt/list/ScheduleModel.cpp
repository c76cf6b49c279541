#include "qt/list/ScheduleModel.h"

#include <QLocale>

#include "kit/ActionSummary.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "qt/toolkit/Services.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

bool isDay(int column) {
    return column >= kFirstDayColumn && column < kNextColumn;
}

bool isToggle(int column) {
    return column == kSwitchColumn || isDay(column);
}

QString filledText(const char* text, std::initializer_list<std::string_view> arguments) {
    return qString(filled(text, arguments));
}

}  // namespace

QString dayName(int day, DayForm form) {
    const auto format = form == DayForm::kNarrow  ? QLocale::NarrowFormat
                        : form == DayForm::kShort ? QLocale::ShortFormat
                                                  : QLocale::LongFormat;
    return QLocale(qString(usersLanguage())).standaloneDayName(day + 1, format);
}

ScheduleModel::ScheduleModel() {
    for (const auto name : {schedule_keys::kIsEnabled, schedule_keys::kInfos})
        _columns.push_back(std::make_shared<TableColumn>(name));
    for (const auto name : schedule_keys::kActiveOnDays) _columns.push_back(std::make_shared<TableColumn>(name));
}

void ScheduleModel::reload() {
    const int rows = source ? source->numberOfRowsInTableView() : 0;
    if (rows > _rows) beginInsertRows({}, _rows, rows - 1);
    if (rows < _rows) beginRemoveRows({}, rows, _rows - 1);
    const int before = std::exchange(_rows, rows);
    if (rows > before) endInsertRows();
    if (rows < before) endRemoveRows();
    if (rows > 0) Q_EMIT dataChanged(index(0, 0), index(rows - 1, kColumns - 1));
}

void ScheduleModel::refreshNotes() {
    if (_rows > 0)
        Q_EMIT dataChanged(index(0, saysNextInLine ? kActionColumn : kNextColumn), index(_rows - 1, kNextColumn));
}

int ScheduleModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : _rows;
}

int ScheduleModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

std::shared_ptr<TableColumn> ScheduleModel::column(std::string_view identifier) const {
    for (const auto& column : _columns) {
        if (column->identifier() == identifier) return column;
    }
    return nullptr;
}

const TableColumn& ScheduleModel::columnAt(int shown) const {
    if (shown == kSwitchColumn) return *_columns[0];
    return *_columns[isDay(shown) ? static_cast<std::size_t>(shown - kFirstDayColumn + 2) : 1];
}

void ScheduleModel::hold(int first, int last) {
    std::map<int, Value> held;
    for (int row = std::max(first, 0); row <= std::min(last, _rows - 1); ++row)
        held[row] = valueAt(index(row, kActionColumn));
    _held = std::move(held);
}

Value ScheduleModel::valueAt(const QModelIndex& index) const {
    if (_held && columnAt(index.column()).identifier() == schedule_keys::kInfos) {
        const auto found = _held->find(index.row());
        return found == _held->end() ? Value() : found->second;
    }
    return source->tableViewObjectValueForTableColumnRow(columnAt(index.column()), index.row());
}

QVariant ScheduleModel::textOf(const QModelIndex& index) const {
    if (isDay(index.column())) return dayName(index.column() - kFirstDayColumn, DayForm::kNarrow);
    if (index.column() == kTimeColumn) return qString(valueAt(index)[summary::kTime].text());
    if (index.column() == kActionColumn) return qString(valueAt(index)[summary::kName].text());
    if (index.column() != kNextColumn || !noteOf) return {};
    return noteOf(index.row()).next;
}

/// What it does, and what it needs of the computer where that does not say it.
QString ScheduleModel::lineOf(const QModelIndex& index) const {
    const Value value = valueAt(index);
    QStringList parts = {qString(value[summary::kAction].text())};
    const auto add = [&](const char* need, const QString& text) {
        if (value[need].intValue() != 0 && !parts.first().contains(text, Qt::CaseInsensitive)) parts.append(text);
    };
    add(summary::kWakeUp, wakesText);
    add(summary::kStartup, startsText);
    if (saysNextInLine && noteOf) parts.prepend(noteOf(index.row()).next);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

/// A row's parts, each on its own, as a screen reader speaks them.
QString ScheduleModel::spokenText(const QModelIndex& index) const {
    const auto state = [&] { return valueAt(index).intValue() != 0 ? translated("on") : translated("off"); };
    if (index.column() == kSwitchColumn) return filledText(translated("Schedule: {1}"), {state()});
    if (isDay(index.column())) {
        const QString day = dayName(index.column() - kFirstDayColumn, DayForm::kLong);
        return filledText(translated("{1}: {2}"), {stdString(day), state()});
    }
    if (index.column() == kActionColumn) {
        const QString line = index.data(kLineRole).toString();
        const QString fault = index.data(kFaultRole).toString();
        QStringList parts = {textOf(index).toString(), line, fault};
        parts.removeAll(QString());
        return parts.join(QStringLiteral(", "));
    }
    return textOf(index).toString();
}

QVariant ScheduleModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !source || index.row() >= _rows) return {};
    switch (role) {
        case Qt::DisplayRole:
            return textOf(index);
        case Qt::CheckStateRole:
            if (!isToggle(index.column())) return {};
            return valueAt(index).intValue() != 0 ? Qt::Checked : Qt::Unchecked;
        case Qt::AccessibleTextRole:
        case Qt::ToolTipRole:
            return spokenText(index);
        case kLineRole:
            return lineOf(index);
        case kFaultRole:
            return noteOf ? noteOf(index.row()).fault : QString();
        case kOnRole:
            return valueAt(this->index(index.row(), kSwitchColumn)).intValue() != 0;
        default:
            return {};
    }
}

QVariant ScheduleModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && (section == kTimeColumn || section == kActionColumn || section == kNextColumn))
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    const bool spoken = role == Qt::AccessibleTextRole || role == Qt::ToolTipRole;
    if (role != Qt::DisplayRole && !spoken) return {};
    if (isDay(section)) return dayName(section - kFirstDayColumn, spoken ? DayForm::kLong : DayForm::kNarrow);
    switch (section) {
        case kSwitchColumn:
            return qString(translated("On"));
        case kTimeColumn:
            return qString(translated("Time"));
        case kActionColumn:
            return qString(translated("Action"));
        default:
            return qString(translated("Next"));
    }
}

Qt::ItemFlags ScheduleModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (!index.isValid() || isEnabled(columnAt(index.column()).cell.get())) flags |= Qt::ItemIsEnabled;
    if (isToggle(index.column())) flags |= Qt::ItemIsUserCheckable;
    return flags | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

bool ScheduleModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || !isToggle(index.column()) || !source) return false;
    source->tableViewSetObjectValueForTableColumnRow(Value(value.toInt() != Qt::Unchecked ? 1 : 0),
                                                     columnAt(index.column()), index.row());
    return true;
}

}  // namespace quorel::qt
