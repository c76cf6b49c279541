#include "ctl/StatusText.h"

#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

std::string alarmText(const Value& alarm) {
    const std::string fault = alarm[keys::kFault].text();
    const Value& at = alarm[keys::kAt];
    if (fault == wire::alarm_fault::kMoved)
        return filled(translated("{1}, but would come {2}: the hardware's clock was set"),
                      {momentText(at.integer()), momentText(alarm[keys::kOthers].integer())});
    std::string why;
    if (fault == wire::alarm_fault::kNoClock) why = translated("this computer has no clock with an alarm");
    if (fault == wire::alarm_fault::kOff) why = translated("this daemon sets none, it works below a folder of its own");
    if (fault == wire::alarm_fault::kForbidden) why = translated("the daemon may not set alarms");
    if (fault == wire::alarm_fault::kPast) why = translated("it was too late to set it");
    if (fault == wire::alarm_fault::kTooFar)
        why = translated("it is further ahead than this computer's clock can be set");
    if (fault == wire::alarm_fault::kGone) why = translated("another program has taken it away");
    if (fault == wire::alarm_fault::kTaken) {
        why = filled(translated("another program's earlier alarm stays, for {1}"),
                     {momentText(alarm[keys::kOthers].integer())});
    }
    if (!fault.empty() && why.empty()) {
        const std::string& reason = alarm[keys::kReason].text();
        why = filled(translated("it could not be set: {1}"), {reason.empty() ? fault : reason});
    }
    if (why.empty()) return at.isInteger() ? momentText(at.integer()) : translated("none is needed");
    if (!at.isInteger()) return filled(translated("cannot be set: {1}"), {why});
    return filled(translated("{1}, but is not set: {2}"), {momentText(at.integer()), why});
}

/// An alarm that is wanted, and is not to be had.
bool isMissing(const Value& alarm) {
    return alarm[keys::kAt].isPresent() && alarm[keys::kFault].isPresent();
}

bool acts(const Value& status) {
    return status[keys::kActs].intValue() != 0;
}

}  // namespace

bool isWell(const Value& status) {
    const bool runs = acts(status) && status[keys::kClock].isAbsent() && status[keys::kFaults].array().empty();
    const bool keeps = status[keys::kPlanFault].isAbsent() && status[keys::kStateFault].isAbsent();
    return runs && keeps && !isMissing(status[keys::kWakeAlarm]) && !isMissing(status[keys::kStartupAlarm]);
}

std::vector<std::pair<std::string, std::string>> statusFields(const Value& status, const Array& upcoming,
                                                              const Value& last) {
    std::vector<std::pair<std::string, std::string>> fields;
    if (!acts(status))
        fields.emplace_back(translated("Acts:"), translated("no: nothing of this computer is asked or touched"));
    if (const Value& fault = status[keys::kPlanFault]; fault.isPresent())
        fields.emplace_back(translated("Plan:"),
                            filled(translated("the file in place is not used: {1}"), {fault.text()}));
    if (const Value& fault = status[keys::kStateFault]; fault.isPresent())
        fields.emplace_back(translated("State:"), filled(translated("cannot be kept: {1}"), {fault.text()}));
    if (status[keys::kClock].isPresent())
        fields.emplace_back(translated("Clock:"),
                            translated("behind; nothing runs until it is set, or for ten minutes"));
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
