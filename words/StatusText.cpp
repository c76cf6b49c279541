#include "words/StatusText.h"

#include "model/Wire.h"
#include "words/Language.h"

namespace quorel {

namespace keys = wire::keys;

bool isMissing(const Value& alarm) {
    return alarm[keys::kAt].isPresent() && alarm[keys::kFault].isPresent();
}

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

std::vector<StatusField> troubles(const Value& status) {
    std::vector<StatusField> fields;
    if (status[keys::kActs].intValue() == 0)
        fields.emplace_back(translated("Acts:"), translated("no: nothing of this computer is asked or touched"));
    if (const Value& fault = status[keys::kPlanFault]; fault.isPresent())
        fields.emplace_back(translated("Plan:"),
                            filled(translated("the file in place is not used: {1}"), {fault.text()}));
    if (const Value& fault = status[keys::kStateFault]; fault.isPresent())
        fields.emplace_back(translated("State:"), filled(translated("cannot be kept: {1}"), {fault.text()}));
    if (status[keys::kClock].isPresent())
        fields.emplace_back(translated("Clock:"),
                            translated("behind; nothing runs until it is set, or for ten minutes"));
    return fields;
}

}  // namespace quorel
