#include "qt/host/Forecast.h"

#include <ctime>

#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "scheduler/Agenda.h"
#include "scheduler/ScheduleReading.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

/// Whatever a Schedule does, it is known: only when is asked here.
class AnyAction : public Actions {
    std::optional<Module> module(const std::string&) const override { return Module{true, 0}; }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}
};

}  // namespace

Forecast::Answer Forecast::of(const Value& schedule) const {
    if (schedule[schedule_keys::kIsEnabled].intValue() == 0) return {.at = {}, .fault = {}, .isOff = true};
    const ListReading reading = readScheduleList(Array{schedule}, AnyAction());
    if (reading.schedules.empty()) return {.at = {}, .fault = translated("there is no such time")};
    const auto next = Agenda(_calendar, reading.schedules).after(std::time(nullptr), 1);
    if (next.empty()) return {.at = {}, .fault = translated("no day is chosen")};
    return {.at = next.front().due, .fault = {}};
}

}  // namespace quorel::qt
