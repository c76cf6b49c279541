#include "ctl/StatusText.h"

#include <ctime>

#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/StatusText.h"

namespace quorel {

namespace keys = wire::keys;

bool isWell(const Value& status) {
    const bool runs =
        status[keys::kActs].intValue() != 0 && status[keys::kClock].isAbsent() && status[keys::kFaults].array().empty();
    const bool keeps = status[keys::kPlanFault].isAbsent() && status[keys::kStateFault].isAbsent();
    return runs && keeps && !isMissing(status[keys::kWakeAlarm]) && !isMissing(status[keys::kStartupAlarm]);
}

std::vector<StatusField> statusFields(const Value& status, const Array& upcoming, const Array& pauses,
                                      const Value& last) {
    std::vector<StatusField> fields = troubles(status);
    for (const Value& pause : pauses) fields.emplace_back(translated("Pause:"), pauseText(pause, std::time(nullptr)));
    if (upcoming.empty()) fields.emplace_back(translated("Next:"), translated("nothing is planned"));
    // Whatever is under way or was changed, and two that simply come.
    int planned = 0;
    for (const Value& one : upcoming) {
        const std::string step = stepText(one);
        const std::string number =
            one[keys::kNumber].isAbsent() ? "" : " (" + std::to_string(one[keys::kNumber].integer()) + ")";
        fields.emplace_back(planned == 0 ? translated("Next:") : translated("Then:"),
                            momentText(one[keys::kAt].integer()) + "  " + actionName(one) + number);
        if (!step.empty()) fields.emplace_back("", step);
        planned += step.empty() ? 1 : 0;
        if (planned == 2) break;
    }
    if (last.isPresent()) fields.emplace_back(translated("Last:"), outcomeLine(last));
    fields.emplace_back(translated("Wake-up alarm:"), alarmText(status[keys::kWakeAlarm]));
    fields.emplace_back(translated("Start-up alarm:"), alarmText(status[keys::kStartupAlarm]));
    for (const Value& fault : status[keys::kFaults].array())
        fields.emplace_back(translated("Fault:"), faultText(fault));
    return fields;
}

}  // namespace quorel
