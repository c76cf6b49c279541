#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/TableView.h"

namespace quorel::qt {

/// What the list shows from left to right.
enum Column { kSwitchColumn, kTimeColumn, kActionColumn, kFirstDayColumn, kNextColumn = kFirstDayColumn + 7, kColumns };

/// What a row says beside what the table's source tells of it.
struct RowNote {
    QString next;   ///< "tomorrow 06:45", "off"
    QString fault;  ///< why it never happens, or empty
};

/// The columns that the logic knows, with the cell that it gave each.
class TableColumn : public quorel::TableColumn {
public:
    explicit TableColumn(std::string_view name) : _name(name) {}
    std::string identifier() const override { return _name; }
    void setDataCell(std::shared_ptr<Cell> given) override { cell = std::move(given); }
    std::shared_ptr<Cell> cell;

private:
    const std::string _name;
};

/// The rows of the table's source as the toolkit asks for them. Nothing is kept of a row: only those in sight are asked
/// for.
class ScheduleModel : public QAbstractTableModel {
public:
    enum Role { kLineRole = Qt::UserRole, kFaultRole, kOnRole };

    ScheduleModel();

    /// The source's own reload.
    void reload();
    /// Times of what comes next have passed.
    void refreshNotes();

    /// Keeps the summaries of these rows, the only ones that are shown until they are released.
    void hold(int first, int last);
    void release() { _held.reset(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    /// Null for a column that the logic does not know.
    std::shared_ptr<TableColumn> column(std::string_view identifier) const;
    /// The one whose values a shown column is made of.
    const TableColumn& columnAt(int shown) const;

    TableViewDataSource* source = nullptr;
    bool saysNextInLine = false;  ///< there is no room for a column of that
    std::function<RowNote(int row)> noteOf;
    QString wakesText, startsText;  ///< "wakes the computer up", "turns the computer on"

private:
    Value valueAt(const QModelIndex& index) const;
    QVariant textOf(const QModelIndex& index) const;
    QString lineOf(const QModelIndex& index) const;
    QString spokenText(const QModelIndex& index) const;

    std::vector<std::shared_ptr<TableColumn>> _columns;  ///< flag, summary, seven days
    int _rows = 0;
    std::optional<std::map<int, Value>> _held;
};

/// As the user's language names it: "Mon", "Monday", "M".
enum class DayForm { kNarrow, kShort, kLong };
QString dayName(int day, DayForm form);

}  // namespace quorel::qt
