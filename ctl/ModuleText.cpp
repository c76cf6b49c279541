#include "ctl/ModuleText.h"

#include <string_view>

#include "actions/ActionDescription.h"
#include "actions/DescriptionKeys.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

std::string wordFaultText(const std::string& fault, const std::string& where) {
    if (fault == description_fault::kFormat) return filled(translated("{1} is a version that is not known"), {where});
    if (fault == description_fault::kMissing) return filled(translated("{1} is missing"), {where});
    if (fault == description_fault::kUnknown) return filled(translated("{1} means nothing there"), {where});
    if (fault == description_fault::kKind) return filled(translated("{1} is of the wrong kind"), {where});
    if (fault == description_fault::kRange) return filled(translated("{1} is out of its range"), {where});
    if (fault == description_fault::kDoubled) return filled(translated("{1} is there twice"), {where});
    if (fault == description_fault::kTooMany) return filled(translated("{1} has too many"), {where});
    if (fault == description_fault::kText) return filled(translated("{1} is too long or not plain text"), {where});
    if (fault == description_fault::kMalformed && !where.empty())
        return filled(translated("{1} makes no sense"), {where});
    return fault;
}

std::string abilityText(const Value& module) {
    const std::string& fault = module[keys::kFault].text();
    if (!fault.empty())
        return filled(translated("cannot act: {1}"), {faultText(fault, module[keys::kFaultKey].text())});
    if (module[keys::kProgram].isAbsent()) return translated("carried out by the daemon itself");
    const std::string limit = durationText(module[keys::kTimeLimit].integer());
    if (module[keys::kRunsAs].text() == description_keys::kUser)
        return filled(translated("as the user at the computer, {1} at most"), {limit});
    return filled(translated("in a sandbox, {1} at most"), {limit});
}

}  // namespace

std::string faultText(const std::string& fault, const std::string& where) {
    if (fault == description_fault::kUntrusted) return translated("others than root could have changed it");
    if (fault == description_fault::kUnreadable) return translated("its information dictionary cannot be read");
    if (fault == description_fault::kNoWords) return translated("it does not say what action it is");
    if (fault == description_fault::kNoProgram) return translated("it has nothing to run");
    if (fault == description_fault::kMalformed && where.empty())
        return translated("what it says of its program makes no sense");
    if (fault == description_fault::kBadProgram)
        return translated(
            "its program is missing, not executable for everybody, or others than root could have changed it");
    if (fault == description_fault::kTaken) return translated("another module is this action already");
    return wordFaultText(fault, where);
}

std::vector<std::vector<std::string>> moduleRows(const Value& module) {
    const std::string& action = module[keys::kAction].text();
    const std::string name = action.empty() ? module[keys::kBundle].text() : actionName(module);
    std::vector<std::vector<std::string>> rows = {{name, action, abilityText(module)}};
    for (const Value& need : module[keys::kNeeds].array()) {
        if (need.text() == description_keys::kNetwork) rows.push_back({translated("uses the network")});
        if (need.text() == description_keys::kRoot) rows.push_back({translated("is root")});
    }
    for (const Value& folder : module[keys::kWrites].array())
        rows.push_back({filled(translated("writes {1}"), {folder.text()})});
    if (const std::int64_t late = module[keys::kMakeUp].integer(); late > 0)
        rows.push_back({filled(translated("when missed, made up for within {1}"), {durationText(late)})});
    return rows;
}

}  // namespace quorel
