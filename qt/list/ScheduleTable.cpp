#include "qt/list/ScheduleTable.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>

#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

constexpr const char* kMimeType = "application/x-quorel-schedule";

/// Whatever is declared stays within this list.
class NoPasteboard : public Pasteboard {
    void declareTypesOwner(const std::vector<std::string>&, const Object*) override {}
    void setDataForType(std::string_view, std::string_view) override {}
};

/// Leaves the ground of a selected row to the drawing of its cells.
class PlainRows : public QProxyStyle {
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element != PE_PanelItemViewRow) QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
};

}  // namespace

ScheduleList::ScheduleList(QWidget* parent) : QTableView(parent) {
    auto* const style = new PlainRows;
    style->setParent(this);
    setStyle(style);
    setModel(&_model);
    setItemDelegate(&_drawing);
    setAccessibleName(qString(translated("Schedules")));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setShowGrid(false);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);  // it is drawn here
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(kActionColumn, QHeaderView::Stretch);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { sort(column); });
    setRowsHigh();
}

void ScheduleList::setRowsHigh() {
    verticalHeader()->setMinimumSectionSize(qt::rowHeight(fontMetrics()));
    verticalHeader()->setDefaultSectionSize(qt::rowHeight(fontMetrics()));
    horizontalHeader()->setMinimumSectionSize(1);
    for (int column = 0; column < kColumns; ++column) {
        if (column != kActionColumn) setColumnWidth(column, qt::columnWidth(font(), column));
    }
}

/// In a narrow window the action's line says when it comes next.
void ScheduleList::resizeEvent(QResizeEvent* event) {
    int needed = 0;
    for (int column = 0; column < kColumns; ++column) needed += qt::columnWidth(font(), column);
    _model.saysNextInLine = viewport()->width() < needed;
    setColumnHidden(kNextColumn, _model.saysNextInLine);
    QTableView::resizeEvent(event);
}

void ScheduleList::hold(bool holds) {
    const int last = rowAt(viewport()->height() - 1);
    if (holds) _model.hold(rowAt(0), last < 0 ? _model.rowCount() - 1 : last);
    if (!holds) _model.release();
    viewport()->update();
}

void ScheduleList::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) setRowsHigh();
}

/// The logic is asked about every change of the selection, whatever brings it about.
QItemSelectionModel::SelectionFlags ScheduleList::selectionCommand(const QModelIndex& index,
                                                                   const QEvent* event) const {
    if (tableDelegate && !tableDelegate->selectionShouldChangeInTableView()) return QItemSelectionModel::NoUpdate;
    return QTableView::selectionCommand(index, event);
}

void ScheduleList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    if (tableDelegate) tableDelegate->tableViewSelectionDidChange();
}

void ScheduleList::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isDelete = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    const bool isVertical = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    const bool moves = isVertical && event->modifiers() == Qt::AltModifier;
    if (isReturn && doubleAction) {
        doubleAction();
    } else if (isDelete && deleteAction) {
        if (!event->isAutoRepeat()) deleteAction();
    } else if (moves) {
        moveSelected(event->key() == Qt::Key_Up ? -1 : 1);
    } else {
        QTableView::keyPressEvent(event);
    }
}

/// On a toggle two quick clicks are two clicks; elsewhere they edit.
void ScheduleList::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    if (index.flags() & Qt::ItemIsUserCheckable) return mousePressEvent(event);
    QTableView::mouseDoubleClickEvent(event);
    if (index.isValid() && doubleAction) doubleAction();
}

void ScheduleList::sort(int column) {
    if (tableDelegate) tableDelegate->tableViewShouldSelectTableColumn(_model.columnAt(column));
}

// Dragging. A place is a gap: before which row a drop would put what is dragged.

bool ScheduleList::beginDrag(int row) {
    NoPasteboard pasteboard;
    if (!_model.source || !_model.source->tableViewWriteRowsToPasteboard({row}, pasteboard)) return false;
    _draggedRow = row;
    return true;
}

/// A place that leaves the order as it is is nobody's business; any other is the source's row as it stands.
bool ScheduleList::drop(int gap) {
    if (_draggedRow < 0 || gap < 0 || gap == _draggedRow || gap == _draggedRow + 1) return false;
    const int row = gap > _draggedRow ? gap - 1 : gap;
    const bool taken = _model.source->tableViewAcceptDropRowDropOperation(gap, DropOperation::Above);
    if (taken) setCurrentIndex(_model.index(row, currentIndex().isValid() ? currentIndex().column() : kActionColumn));
    return taken;
}

void ScheduleList::moveSelected(int by) {
    const int row = currentIndex().row();
    const int gap = by < 0 ? row - 1 : row + 2;
    if (row < 0 || gap < 0 || gap > _model.rowCount() || !beginDrag(row)) return;
    drop(gap);
    _draggedRow = -1;
}

int ScheduleList::gapAt(int y) const {
    const int row = rowAt(y);
    if (row < 0) return _model.rowCount();
    return y < rowViewportPosition(row) + rowHeight(row) / 2 ? row : row + 1;
}

void ScheduleList::startDrag(Qt::DropActions) {
    const int row = currentIndex().row();
    if (row < 0 || !beginDrag(row)) return;
    _isDragging = true;
    auto* const data = new QMimeData;
    data->setData(QString::fromLatin1(kMimeType), {});
    auto* const drag = new QDrag(this);  // the toolkit deletes it
    drag->setMimeData(data);
    const QRect picture(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
    drag->setPixmap(viewport()->grab(picture));
    drag->setHotSpot(viewport()->mapFromGlobal(QCursor::pos()) - picture.topLeft());
    drag->exec(Qt::MoveAction);
    _isDragging = false;
    _draggedRow = _gap = -1;
    viewport()->update();
}

void ScheduleList::dragEnterEvent(QDragEnterEvent* event) {
    if (event->source() == this) event->acceptProposedAction();
}

void ScheduleList::dragMoveEvent(QDragMoveEvent* event) {
    if (event->source() != this) return event->ignore();
    QTableView::dragMoveEvent(event);  // scrolls near the edges
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    _gap = gapAt(event->position().toPoint().y());
#else
    _gap = gapAt(event->pos().y());
#endif
    event->acceptProposedAction();
    viewport()->update();
}

void ScheduleList::dragLeaveEvent(QDragLeaveEvent* event) {
    QTableView::dragLeaveEvent(event);
    _gap = -1;
    viewport()->update();
}

/// The source moves the row itself. The toolkit is told that nothing was moved, or it would take the row away.
void ScheduleList::dropEvent(QDropEvent* event) {
    if (event->source() != this) return;
    drop(std::exchange(_gap, -1));
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
}

void ScheduleList::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (_gap < 0 || _model.rowCount() == 0) return;
    const int last = _model.rowCount() - 1;
    const int y = _gap > last ? rowViewportPosition(last) + rowHeight(last) - 1 : rowViewportPosition(_gap);
    QPainter painter(viewport());
    painter.fillRect(0, std::max(y - 1, 0), viewport()->width(), 3, palette().color(QPalette::Highlight));
}

ScheduleTable::ScheduleTable(ScheduleList* list) : Enabled(list) {}

void ScheduleTable::setSource(TableViewDataSource* source) {
    native()->schedules().source = source;
}

void ScheduleTable::setDoubleAction(std::function<void()> action) {
    native()->doubleAction = std::move(action);
}

void ScheduleTable::setDelegate(TableViewDelegate* delegate) {
    native()->tableDelegate = delegate;
}

std::shared_ptr<quorel::TableColumn> ScheduleTable::tableColumnWithIdentifier(std::string_view identifier) {
    return native()->schedules().column(identifier);
}

int ScheduleTable::selectedRow() const {
    const QModelIndexList rows = native()->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

int ScheduleTable::numberOfSelectedRows() const {
    return static_cast<int>(native()->selectionModel()->selectedRows().size());
}

void ScheduleTable::deselectRow(int row) {
    const QModelIndex index = native()->schedules().index(row, 0);
    native()->selectionModel()->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
}

void ScheduleTable::reloadData() {
    native()->schedules().reload();
}

}  // namespace quorel::qt
