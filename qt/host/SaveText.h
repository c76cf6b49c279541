#pragma once

#include <QString>

#include "kit/VXCommunicationCenter.h"

namespace quorel::qt {

class ScheduleModel;

/// What a save was joined with: Schedules of others, and those that both sides have changed. `schedules` is the list
/// that `rows` shows, read after the save: what others have is told where it is shown, actions that are not known here
/// are not. Empty where there was nothing.
QString joinedText(const Value& joined, Array sent, const Array& schedules, const ScheduleModel& rows);

/// Why the changes are not stored, of an answer that did not handle them.
QString notStoredText(const EditsAnswer& answer);

}  // namespace quorel::qt
