#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "headless/Controls.h"
#include "platform/TableView.h"

namespace quorel::headless {

template <class Interface>
class BasicCell : public Interface {
public:
    explicit BasicCell(std::string_view cellTitle) : title(cellTitle) {}
    void setTarget(const Object* newTarget) override { target = newTarget; }
    void setEnabled(bool isEnabled) override { enabled = isEnabled; }

    std::string title;
    const Object* target = nullptr;
    bool enabled = true;
};

class ButtonCell : public BasicCell<quorel::ButtonCell> {
public:
    using BasicCell::BasicCell;
    void setButtonType(ButtonType newType) override { type = newType; }
    void setControlSize(ControlSize newSize) override { size = newSize; }
    void setImagePosition(ImagePosition newPosition) override { position = newPosition; }

    ButtonType type{};
    ControlSize size = ControlSize::Regular;
    ImagePosition position = ImagePosition::NoImage;
};

class ConfiguratorCell : public BasicCell<Cell> {
public:
    using BasicCell::BasicCell;
};

class Cells : public quorel::Cells {
public:
    std::shared_ptr<quorel::ButtonCell> makeButtonCell(std::string_view title) override {
        return std::make_shared<ButtonCell>(title);
    }
    std::shared_ptr<Cell> makeConfiguratorCell(std::string_view title) override {
        return std::make_shared<ConfiguratorCell>(title);
    }
};

class TableColumn : public quorel::TableColumn {
public:
    explicit TableColumn(std::string_view identifier) : _identifier(identifier) {}
    std::string identifier() const override { return _identifier; }
    void setDataCell(std::shared_ptr<Cell> newCell) override { cell = std::move(newCell); }

    std::shared_ptr<Cell> cell;

private:
    std::string _identifier;
};

class Pasteboard : public quorel::Pasteboard {
public:
    void declareTypesOwner(const std::vector<std::string>& newTypes, const Object* newOwner) override {
        types = newTypes;
        owner = newOwner;
    }
    void setDataForType(std::string_view bytes, std::string_view type) override { data[std::string(type)] = bytes; }

    std::vector<std::string> types;
    const Object* owner = nullptr;
    std::map<std::string, std::string> data;
};

/// A table that holds a selection and passes on clicks, header clicks and drags to its delegate and data source.
class TableView : public BasicControl<quorel::TableView> {
public:
    void setTarget(const Object* newTarget) override { target = newTarget; }
    void setDoubleAction(std::function<void()> action) override { doubleAction = std::move(action); }
    void setDelegate(TableViewDelegate* newDelegate) override { delegate = newDelegate; }
    void setRowHeight(double points) override { rowHeight = points; }
    void setAllowsColumnSelection(bool allows) override { allowsColumnSelection = allows; }
    void setVerticalMotionCanBeginDrag(bool can) override { verticalMotionCanBeginDrag = can; }
    void registerForDraggedTypes(const std::vector<std::string>& types) override { draggedTypes = types; }
    std::shared_ptr<quorel::TableColumn> tableColumnWithIdentifier(std::string_view identifier) override;
    int selectedRow() const override { return _selection.empty() ? -1 : *_selection.begin(); }
    int numberOfSelectedRows() const override { return static_cast<int>(_selection.size()); }
    void deselectRow(int row) override;
    void reloadData() override;

    // What a person does. Each answers whether the table took it.
    bool clickCell(int row, std::string_view identifier);  ///< on a check box
    bool clickHeader(std::string_view identifier);         ///< false also where the column was selected by it
    bool selectRows(std::set<int> rows);
    bool doubleClickRow(int row);
    bool drag(const std::vector<int>& rows, int toRow, DropOperation operation = DropOperation::Above);
    /// What the cell shows.
    Value valueAt(int row, std::string_view identifier);

    TableViewDataSource* dataSource = nullptr;  ///< connected by the interface file
    TableViewDelegate* delegate = nullptr;
    const Object* target = nullptr;
    std::function<void()> doubleAction;
    std::vector<std::shared_ptr<TableColumn>> columns;
    std::vector<std::string> draggedTypes;
    Pasteboard pasteboard;
    double rowHeight = 17;
    bool allowsColumnSelection = false;
    bool verticalMotionCanBeginDrag = true;
    int reloads = 0;
    std::function<void()> onReload;

private:
    TableColumn& column(std::string_view identifier);
    void selectionChanged();
    std::set<int> _selection;
};

}  // namespace quorel::headless
