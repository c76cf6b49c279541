#include <algorithm>
#include <iterator>
#include <utility>

#include "configurator/VXConfigurator.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"

namespace quorel {

void VXConfigurator::setScheduleArray(const Value& list) {
    const Array* schedules = &list.array();
    Array seed;
    if (schedules->empty()) {
        // The second one is of the type that the first one is not.
        _scheduleArray.clear();
        _scheduleArray.push_back(newEmptySchedule());
        _scheduleArray.push_back(newEmptySchedule());
        seed = _scheduleArray;
        schedules = &seed;
    }
    Array kept;
    kept.reserve(schedules->size());
    std::copy_if(schedules->begin(), schedules->end(), std::back_inserter(kept),
                 [this](const Value& schedule) { return isRegistered(schedule[schedule_keys::kActionType]); });
    _scheduleArray = std::move(kept);
    outlets.tableView->reloadData();
}

int VXConfigurator::numberOfActionInScheduleArrayOfType(std::string_view type) const {
    return static_cast<int>(std::count_if(_scheduleArray.begin(), _scheduleArray.end(), [&](const Value& schedule) {
        const Value& own = schedule[schedule_keys::kActionType];
        return own.isText() && own.text() == type;
    }));
}

Value VXConfigurator::newEmptySchedule() const {
    const bool wakesUp = numberOfActionInScheduleArrayOfType(schedule_keys::kSleepType) >
                         numberOfActionInScheduleArrayOfType(schedule_keys::kWakeUpType);
    const std::string_view type = wakesUp ? schedule_keys::kWakeUpType : schedule_keys::kSleepType;
    Dictionary fresh{{schedule_keys::kIsEnabled, 1},
                     {schedule_keys::kActionType, type},
                     {schedule_keys::kActionHour, wakesUp ? "7" : "23"},
                     {schedule_keys::kActionMinute, "00"}};
    for (const auto day : schedule_keys::kActiveOnDays) fresh.set(day, true);
    fresh.set(schedule_keys::kActionParameters, moduleOfType(type).defaultParameters());
    return Value(std::move(fresh));
}

void VXConfigurator::addSchedule(const Object*) {
    _isEditing = false;
    _isAdding = true;
    openEditSheetFor(newEmptySchedule());
}

void VXConfigurator::editSchedule(const Object*) {
    const int row = outlets.tableView->selectedRow();
    if (!hasRow(row) || _locked) return;
    _isEditing = true;
    _isAdding = false;
    openEditSheetFor(scheduleAt(row));
}

void VXConfigurator::deleteSchedule(const Object*) {
    const int row = outlets.tableView->selectedRow();
    if (_scheduleArray.size() < 2 || !hasRow(row)) {
        _platform.application.beep();
        return;
    }
    _scheduleArray.erase(_scheduleArray.begin() + row);
    outlets.tableView->reloadData();
    postEdited();
}

bool VXConfigurator::hasRow(int row) const {
    return row >= 0 && static_cast<std::size_t>(row) < _scheduleArray.size();
}

const Value& VXConfigurator::scheduleAt(int row) const {
    return _scheduleArray[static_cast<std::size_t>(row)];
}

void VXConfigurator::postEdited() {
    _platform.defaultCenter.postNotification(
        {std::string(kMOLConfiguratorHasBeenEditedNotification), std::nullopt, Value()});
}

}  // namespace quorel
