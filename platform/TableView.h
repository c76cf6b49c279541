#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/Value.h"
#include "platform/Controls.h"

namespace quorel {

enum class ButtonType { Switch = 3 };
enum class ControlSize { Regular = 0, Small = 1 };
enum class ImagePosition { NoImage = 0, ImageOnly = 1 };
using DragOperation = unsigned;
inline constexpr DragOperation kDragOperationGeneric = 4;
enum class DropOperation { On = 0, Above = 1 };

/// Draws the values of a column.
class Cell : public Object {
public:
    virtual void setTarget(const Object* target) = 0;  ///< not owned
    virtual void setEnabled(bool enabled) = 0;
};

class ButtonCell : public Cell {
public:
    virtual void setButtonType(ButtonType type) = 0;
    virtual void setControlSize(ControlSize size) = 0;
    virtual void setImagePosition(ImagePosition position) = 0;
};

class TableColumn : public Object {
public:
    virtual std::string identifier() const = 0;
    virtual void setDataCell(std::shared_ptr<Cell> cell) = 0;
};

/// What a drag carries: types and the data under each.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;
    virtual void declareTypesOwner(const std::vector<std::string>& types, const Object* owner) = 0;
    virtual void setDataForType(std::string_view data, std::string_view type) = 0;
};

/// What a table asks of who owns its rows. There is one table to an owner.
class TableViewDataSource {
public:
    virtual ~TableViewDataSource() = default;
    virtual int numberOfRowsInTableView() = 0;
    /// Absent for a row or column that does not exist.
    virtual Value tableViewObjectValueForTableColumnRow(const TableColumn& column, int row) = 0;
    virtual void tableViewSetObjectValueForTableColumnRow(const Value& value, const TableColumn& column, int row) = 0;
    virtual bool tableViewWriteRowsToPasteboard(const std::vector<int>& rows, Pasteboard& pasteboard) = 0;
    virtual DragOperation tableViewValidateDropProposedRowProposedDropOperation(int row, DropOperation operation) = 0;
    virtual bool tableViewAcceptDropRowDropOperation(int row, DropOperation operation) = 0;
};

class TableViewDelegate {
public:
    virtual ~TableViewDelegate() = default;
    virtual bool tableViewShouldEditTableColumnRow(const TableColumn& column, int row) = 0;
    virtual void tableViewSelectionDidChange() = 0;
    virtual bool selectionShouldChangeInTableView() = 0;
    virtual bool tableViewShouldSelectTableColumn(const TableColumn& column) = 0;
};

class TableView : public Control {
public:
    virtual void setTarget(const Object* target) = 0;  ///< not owned
    virtual void setDoubleAction(std::function<void()> action) = 0;
    virtual void setDelegate(TableViewDelegate* delegate) = 0;  ///< not owned
    virtual void setRowHeight(double points) = 0;
    virtual void setAllowsColumnSelection(bool allows) = 0;
    virtual void setVerticalMotionCanBeginDrag(bool can) = 0;
    virtual void registerForDraggedTypes(const std::vector<std::string>& types) = 0;
    virtual std::shared_ptr<TableColumn> tableColumnWithIdentifier(std::string_view identifier) = 0;  ///< or null
    virtual int selectedRow() const = 0;  ///< -1 when none is selected
    virtual int numberOfSelectedRows() const = 0;
    virtual void deselectRow(int row) = 0;
    virtual void reloadData() = 0;  ///< draws all rows anew; the selection stays, but for rows that are gone
};

/// Makes the cells that code creates rather than an interface file.
class Cells {
public:
    virtual ~Cells() = default;
    virtual std::shared_ptr<ButtonCell> makeButtonCell(std::string_view title) = 0;
    /// The cell that draws a row's action summary.
    virtual std::shared_ptr<Cell> makeConfiguratorCell(std::string_view title) = 0;
};

}  // namespace quorel
