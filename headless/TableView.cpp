#include "headless/TableView.h"

#include <stdexcept>

namespace quorel::headless {

std::shared_ptr<quorel::TableColumn> TableView::tableColumnWithIdentifier(std::string_view identifier) {
    for (const auto& column : columns) {
        if (column->identifier() == identifier) return column;
    }
    return nullptr;
}

TableColumn& TableView::column(std::string_view identifier) {
    for (const auto& column : columns) {
        if (column->identifier() == identifier) return *column;
    }
    throw std::out_of_range("no such column: " + std::string(identifier));
}

void TableView::selectionChanged() {
    if (delegate) delegate->tableViewSelectionDidChange();
}

void TableView::deselectRow(int row) {
    if (_selection.erase(row)) selectionChanged();
}

void TableView::reloadData() {
    ++reloads;
    if (onReload) onReload();
    const int rows = dataSource ? dataSource->numberOfRowsInTableView() : 0;
    const auto beyond = _selection.lower_bound(rows);
    if (beyond == _selection.end()) return;
    _selection.erase(beyond, _selection.end());
    selectionChanged();
}

Value TableView::valueAt(int row, std::string_view identifier) {
    return dataSource->tableViewObjectValueForTableColumnRow(column(identifier), row);
}

bool TableView::clickCell(int row, std::string_view identifier) {
    TableColumn& clicked = column(identifier);
    const auto* cell = dynamic_cast<const ButtonCell*>(clicked.cell.get());
    if (!cell || !cell->enabled) return false;
    const bool on = valueAt(row, identifier).intValue() != 0;
    dataSource->tableViewSetObjectValueForTableColumnRow(Value(on ? 0 : 1), clicked, row);
    return true;
}

bool TableView::clickHeader(std::string_view identifier) {
    if (!allowsColumnSelection || !delegate) return false;
    return !delegate->tableViewShouldSelectTableColumn(column(identifier));
}

bool TableView::selectRows(std::set<int> rows) {
    if (delegate && !delegate->selectionShouldChangeInTableView()) return false;
    _selection = std::move(rows);
    selectionChanged();
    return true;
}

bool TableView::doubleClickRow(int row) {
    const bool selected = selectRows({row});
    if (doubleAction) doubleAction();
    return selected;
}

bool TableView::drag(const std::vector<int>& rows, int toRow, DropOperation operation) {
    return dataSource->tableViewWriteRowsToPasteboard(rows, pasteboard) &&
           dataSource->tableViewValidateDropProposedRowProposedDropOperation(toRow, operation) != 0 &&
           dataSource->tableViewAcceptDropRowDropOperation(toRow, operation);
}

}  // namespace quorel::headless
