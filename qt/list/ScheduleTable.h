#pragma once

#include <QTableView>
#include <functional>
#include <vector>

#include "qt/list/ScheduleDelegate.h"
#include "qt/list/ScheduleModel.h"
#include "qt/toolkit/Views.h"

namespace quorel::qt {

/// The list on screen: mouse, keyboard and dragging, told to the table's source and delegate. Main thread.
class ScheduleList : public QTableView {
public:
    explicit ScheduleList(QWidget* parent = nullptr);

    ScheduleModel& schedules() { return _model; }
    const ScheduleDelegate& drawing() const { return _drawing; }
    bool isDragging() const { return _isDragging; }
    void setRowsHigh();
    /// Shows what the rows in sight say now, and asks the source for no summary meanwhile.
    void hold(bool holds);

    TableViewDelegate* tableDelegate = nullptr;
    std::function<void()> doubleAction;  ///< a double click, or Return
    std::function<void()> deleteAction;  ///< Delete

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;
    void selectAll() override {}
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    int gapAt(int y) const;
    bool drop(int gap);
    bool beginDrag(int row);
    void moveSelected(int by);
    void sort(int column);

    ScheduleModel _model;
    ScheduleDelegate _drawing;
    bool _isDragging = false;
    int _draggedRow = -1;
    int _gap = -1;  ///< where a drop would put it: before this row
};

/// The list as the logic sees it.
class ScheduleTable : public Enabled<quorel::TableView, ScheduleList> {
public:
    explicit ScheduleTable(ScheduleList* list);
    void setTarget(const Object*) override {}
    void setDoubleAction(std::function<void()> action) override;
    void setDelegate(TableViewDelegate* delegate) override;
    void setRowHeight(double) override {}  // the font decides
    void setAllowsColumnSelection(bool) override {}
    void setVerticalMotionCanBeginDrag(bool) override {}
    void registerForDraggedTypes(const std::vector<std::string>&) override {}
    std::shared_ptr<quorel::TableColumn> tableColumnWithIdentifier(std::string_view identifier) override;
    int selectedRow() const override;
    int numberOfSelectedRows() const override;
    void deselectRow(int row) override;
    void reloadData() override;

    void setSource(TableViewDataSource* source);
};

}  // namespace quorel::qt
