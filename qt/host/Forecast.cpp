#include "qt/host/Forecast.h"

#include <algorithm>
#include <ctime>

#include "model/Dictionary.h"
#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/Upcoming.h"
#include "model/Wire.h"
#include "scheduler/Agenda.h"
#include "scheduler/ScheduleReading.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel::qt {

namespace {

/// What the daemon has found wrong with an action of the plan; what it does not know of is known.
std::string faultOfAction(const std::string& action, const Value& status) {
    for (const Value& fault : status[wire::keys::kFaults].array()) {
        const std::string& reason = fault[wire::keys::kReason].text();
        const bool isOfAction = reason == wire::schedule_fault::kAction || reason == wire::schedule_fault::kProgram;
        if (isOfAction && fault[wire::keys::kAction].text() == plainText(action)) return reason;
    }
    return {};
}

/// Whatever a Schedule does, it is known: only when is asked here.
class AnyAction : public Actions {
    std::optional<Module> module(const std::string&) const override { return Module{true, 0}; }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}
};

}  // namespace

Forecast::Answer Forecast::of(const Value& schedule, const DaemonView::Told& told, const DeniedKinds& denied) const {
    Answer answer;
    answer.isOff = schedule[schedule_keys::kIsEnabled].intValue() == 0;
    if (answer.isOff) return answer;
    const ListReading reading = readScheduleList(Array{schedule}, AnyAction(), denied);
    answer.reason = faultOfAction(schedule[schedule_keys::kActionType].text(), told.status);
    const bool isOfAction = !answer.reason.empty();
    if (!isOfAction && !reading.faults.empty()) answer.reason = reading.faults.front().reason;
    if (!answer.reason.empty()) answer.fault = faultReasonText(answer.reason);
    if (isOfAction || reading.schedules.empty()) return answer;
    const Agenda agenda(_calendar, reading.schedules);
    const std::string& action = reading.schedules.front()->action;
    auto next = agenda.after(std::time(nullptr), 1);
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
