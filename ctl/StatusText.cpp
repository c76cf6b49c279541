#include "ctl/StatusText.h"

#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

std::string alarmText(const Value& alarm) {
    const std::string fault = alarm["Fault"].text();
    const Value& at = alarm["At"];
    if (fault == "moved")
        return filled(translated("{1}, but would come {2}: the hardware's clock was set"),
                      {momentText(at.integer()), momentText(alarm["Others"].integer())});
    std::string why;
    if (fault == "no-clock") why = translated("this computer has no clock with an alarm");
    if (fault == "off") why = translated("this daemon sets none, it works below a folder of its own");
    if (fault == "forbidden") why = translated("the daemon may not set alarms");
    if (fault == "past") why = translated("it was too late to set it");
    if (fault == "too-far") why = translated("it is further ahead than this computer's clock can be set");
    if (fault == "gone") why = translated("another program has taken it away");
    if (fault == "taken") {
        why = filled(translated("another program's earlier alarm stays, for {1}"),
                     {momentText(alarm["Others"].integer())});
    }
    if (!fault.empty() && why.empty()) {
        const std::string& reason = alarm["Reason"].text();
        why = filled(translated("it could not be set: {1}"), {reason.empty() ? fault : reason});
    }
    if (why.empty()) return at.isInteger() ? momentText(at.integer()) : translated("none is needed");
    if (!at.isInteger()) return filled(translated("cannot be set: {1}"), {why});
    return filled(translated("{1}, but is not set: {2}"), {momentText(at.integer()), why});
}

/// An alarm that is wanted, and is not to be had.
bool isMissing(const Value& alarm) {
    return alarm["At"].isPresent() && alarm["Fault"].isPresent();
}

bool acts(const Value& status) {
    return status["Acts"].intValue() != 0;
}

}  // namespace

bool isWell(const Value& status) {
    const bool runs = acts(status) && status["Clock"].isAbsent() && status["Faults"].array().empty();
    const bool keeps = status["Plan Fault"].isAbsent() && status["State Fault"].isAbsent();
    return runs && keeps && !isMissing(status["Wake Alarm"]) && !isMissing(status["Startup Alarm"]);
}

std::vector<std::pair<std::string, std::string>> statusFields(const Value& status, const Array& upcoming,
                                                              const Value& last) {
    std::vector<std::pair<std::string, std::string>> fields;
    if (!acts(status))
        fields.emplace_back(translated("Acts:"), translated("no: nothing of this computer is asked or touched"));
    if (const Value& fault = status["Plan Fault"]; fault.isPresent())
        fields.emplace_back(translated("Plan:"),
                            filled(translated("the file in place is not used: {1}"), {fault.text()}));
    if (const Value& fault = status["State Fault"]; fault.isPresent())
        fields.emplace_back(translated("State:"), filled(translated("cannot be kept: {1}"), {fault.text()}));
    if (status["Clock"].isPresent())
        fields.emplace_back(translated("Clock:"),
                            translated("behind; nothing runs until it is set, or for ten minutes"));
    if (upcoming.empty()) fields.emplace_back(translated("Next:"), translated("nothing is planned"));
    // Whatever is under way or was changed, and two that simply come.
    int planned = 0;
    for (const Value& one : upcoming) {
        const std::string step = stepText(one);
        const std::string number = one["Number"].isAbsent() ? "" : " (" + std::to_string(one["Number"].integer()) + ")";
        fields.emplace_back(planned == 0 ? translated("Next:") : translated("Then:"),
                            momentText(one["At"].integer()) + "  " + actionName(one) + number);
        if (!step.empty()) fields.emplace_back("", step);
        planned += step.empty() ? 1 : 0;
        if (planned == 2) break;
    }
    if (last.isPresent()) fields.emplace_back(translated("Last:"), outcomeLine(last));
    fields.emplace_back(translated("Wake-up alarm:"), alarmText(status["Wake Alarm"]));
    fields.emplace_back(translated("Start-up alarm:"), alarmText(status["Startup Alarm"]));
    for (const Value& fault : status["Faults"].array()) fields.emplace_back(translated("Fault:"), faultText(fault));
    return fields;
}

}  // namespace quorel
