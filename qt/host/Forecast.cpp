#include "qt/host/Forecast.h"

#include <algorithm>
#include <ctime>

#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "model/Upcoming.h"
#include "model/Wire.h"
#include "scheduler/Agenda.h"
#include "scheduler/ScheduleReading.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel::qt {

namespace {

/// Whatever a Schedule does, it is known: only when is asked here.
class AnyAction : public Actions {
    std::optional<Module> module(const std::string&) const override { return Module{true, 0}; }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}
};

}  // namespace

Forecast::Answer Forecast::of(const Value& schedule, const DaemonClient::Told& told, const DeniedKinds& denied) const {
    Answer answer;
    answer.isOff = schedule[schedule_keys::kIsEnabled].intValue() == 0;
    if (answer.isOff) return answer;
    const ListReading reading = readScheduleList(Array{schedule}, AnyAction(), denied);
    if (!reading.faults.empty()) {
        answer.reason = reading.faults.front().reason;
        answer.fault = faultReasonText(answer.reason);
    }
    if (reading.schedules.empty()) return answer;
    const Agenda agenda(_calendar, reading.schedules);
    const std::string& action = reading.schedules.front()->action;
    auto next = agenda.after(std::time(nullptr), 1);
    if (next.empty()) {
        answer.reason = kNoDay;
        answer.fault = translated("no day is chosen");
        return answer;
    }
    const auto leftOut = [&] {
        return next.empty() ? std::nullopt
                            : leftOutUntil(told.upcoming.array(), told.pauses.array(), next.front().due, action);
    };
    while (const auto until = leftOut()) next = agenda.after(*until - 1, 1);
    if (!next.empty()) answer.at = next.front().due;
    for (const Value& one : told.upcoming.array()) {
        if (one[wire::keys::kStep].text() != wire::step::kPostponed || one[wire::keys::kAction].text() != action)
            continue;
        const Instant due = one[wire::keys::kDue].integer();
        const auto own = agenda.after(due - 1, 1);
        if (own.empty() || own.front().due != due || (answer.at && *answer.at < due)) continue;
        const Instant at = one[wire::keys::kAt].integer();
        answer.at = answer.at && due < *answer.at ? std::min(at, *answer.at) : at;
        break;
    }
    return answer;
}

}  // namespace quorel::qt
