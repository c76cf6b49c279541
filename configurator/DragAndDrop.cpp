#include "configurator/VXConfigurator.h"
#include "model/Schedule.h"

namespace quorel {

// The dragged row travels beside the pasteboard, so that only the table it came from can take it.

bool VXConfigurator::tableViewWriteRowsToPasteboard(const std::vector<int>& rows, Pasteboard& pasteboard) {
    if (_locked || rows.empty()) return false;
    _draggedRow = rows.front();
    pasteboard.declareTypesOwner({kSchedulePasteboard}, this);
    pasteboard.setDataForType({}, kSchedulePasteboard);
    return rows.size() == 1;
}

DragOperation VXConfigurator::tableViewValidateDropProposedRowProposedDropOperation(int, DropOperation) {
    return kDragOperationGeneric;
}

bool VXConfigurator::tableViewAcceptDropRowDropOperation(int row, DropOperation) {
    const int rows = static_cast<int>(_scheduleArray.size());
    if (!hasRow(_draggedRow) || row < 0 || row > rows) return false;
    const Value dragged = scheduleAt(_draggedRow);
    const int place = _draggedRow > row ? row : row - 1;
    _scheduleArray.erase(_scheduleArray.begin() + _draggedRow);
    // The first row dropped on itself would go above the top. There is no such place: the row is taken out of the list
    // and the drop refused, as the platform's list does it, which raises an error only after the removal.
    const bool hasPlace = place >= 0;
    if (hasPlace) _scheduleArray.insert(_scheduleArray.begin() + place, dragged);
    outlets.tableView->reloadData();
    return hasPlace;
}

}  // namespace quorel
