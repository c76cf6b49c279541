#pragma once

#include "appkit/ActionTarget.h"
#include "appkit/Controls.h"
#include "platform/TableView.h"

namespace quorel::appkit {

/// Wraps a cell that a column can be given.
class NativeCell {
public:
    explicit NativeCell(NSCell *cell) : _cell(cell) {}
    virtual ~NativeCell() = default;
    NSCell *nativeCell() const { return _cell.get(); }

private:
    Retained<NSCell> _cell;
};

template <class Interface>
class BasicCell : public Interface, public NativeCell {
public:
    explicit BasicCell(NSCell *cell) : NativeCell(cell) {}
    void setTarget(const Object *) override {}  // the table tells its data source of a click, the cell nobody
    void setEnabled(bool enabled) override { [nativeCell() setEnabled:enabled]; }
};

class ButtonCell : public BasicCell<quorel::ButtonCell> {
public:
    using BasicCell::BasicCell;
    void setButtonType(ButtonType type) override;
    void setControlSize(ControlSize size) override;
    void setImagePosition(ImagePosition position) override;
};

class Cells : public quorel::Cells {
public:
    std::shared_ptr<quorel::ButtonCell> makeButtonCell(std::string_view title) override;
    std::shared_ptr<Cell> makeConfiguratorCell(std::string_view title) override;
};

class TableColumn : public quorel::TableColumn {
public:
    explicit TableColumn(NSTableColumn *column) : _column(column) {}
    std::string identifier() const override { return stdString([_column.get() identifier]); }
    void setDataCell(std::shared_ptr<Cell> cell) override;

private:
    Retained<NSTableColumn> _column;
};

class Pasteboard : public quorel::Pasteboard {
public:
    explicit Pasteboard(NSPasteboard *pasteboard) : _pasteboard(pasteboard) {}
    void declareTypesOwner(const std::vector<std::string> &types, const Object *owner) override;
    void setDataForType(std::string_view data, std::string_view type) override;

private:
    Retained<NSPasteboard> _pasteboard;
};

/// `bridge` is the data source, and becomes the delegate: it passes on what the table says. Retained, since neither
/// the table nor the interface file keeps it.
class TableView : public BasicControl<quorel::TableView, NSTableView> {
public:
    TableView(NSTableView *table, id bridge) : BasicControl(table), _bridge([bridge retain]) {}
    ~TableView() override;
    void setTarget(const Object *) override {}  // is known to whoever set the double action
    void setDoubleAction(std::function<void()> action) override;
    void setDelegate(TableViewDelegate *delegate) override { [native() setDelegate:delegate ? _bridge : nil]; }
    void setRowHeight(double points) override;
    void setAllowsColumnSelection(bool allows) override { [native() setAllowsColumnSelection:allows]; }
    void setVerticalMotionCanBeginDrag(bool can) override { [native() setVerticalMotionCanBeginDrag:can]; }
    void registerForDraggedTypes(const std::vector<std::string> &types) override;
    std::shared_ptr<quorel::TableColumn> tableColumnWithIdentifier(std::string_view identifier) override;
    int selectedRow() const override { return static_cast<int>([native() selectedRow]); }
    int numberOfSelectedRows() const override { return static_cast<int>([native() numberOfSelectedRows]); }
    void deselectRow(int row) override { [native() deselectRow:row]; }
    void reloadData() override { [native() reloadData]; }

private:
    id _bridge;
    VXActionTarget *_doubleAction = nil;
};

}  // namespace quorel::appkit
