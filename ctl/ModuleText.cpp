#include "ctl/ModuleText.h"

#include <string_view>

#include "actions/DescriptionKeys.h"
#include "model/Dictionary.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

std::string wordFaultText(const std::string& fault, const std::string& where) {
    if (fault == "format") return filled(translated("{1} is a version that is not known"), {where});
    if (fault == "missing") return filled(translated("{1} is missing"), {where});
    if (fault == "unknown") return filled(translated("{1} means nothing there"), {where});
    if (fault == "kind") return filled(translated("{1} is of the wrong kind"), {where});
    if (fault == "range") return filled(translated("{1} is out of its range"), {where});
    if (fault == "doubled") return filled(translated("{1} is there twice"), {where});
    if (fault == "too-many") return filled(translated("{1} has too many"), {where});
    if (fault == "text") return filled(translated("{1} is too long or not plain text"), {where});
    if (fault == "malformed" && !where.empty()) return filled(translated("{1} makes no sense"), {where});
    return fault;
}

std::string abilityText(const Value& module) {
    const std::string& fault = module["Fault"].text();
    if (!fault.empty()) return filled(translated("cannot act: {1}"), {faultText(fault, module["FaultKey"].text())});
    if (module["Program"].isAbsent()) return translated("carried out by the daemon itself");
    const std::string limit = durationText(module["TimeLimit"].integer());
    if (module["RunsAs"].text() == description_keys::kUser)
        return filled(translated("as the user at the computer, {1} at most"), {limit});
    return filled(translated("in a sandbox, {1} at most"), {limit});
}

}  // namespace

std::string faultText(const std::string& fault, const std::string& where) {
    if (fault == "untrusted") return translated("others than root could have changed it");
    if (fault == "unreadable") return translated("its information dictionary cannot be read");
    if (fault == "no-words") return translated("it does not say what action it is");
    if (fault == "no-program") return translated("it has nothing to run");
    if (fault == "malformed" && where.empty()) return translated("what it says of its program makes no sense");
    if (fault == "bad-program")
        return translated(
            "its program is missing, not executable for everybody, or others than root could have changed it");
    if (fault == "taken") return translated("another module is this action already");
    return wordFaultText(fault, where);
}

std::vector<std::vector<std::string>> moduleRows(const Value& module) {
    const std::string& action = module["Action"].text();
    const std::string name = action.empty() ? module["Bundle"].text() : actionName(module);
    std::vector<std::vector<std::string>> rows = {{name, action, abilityText(module)}};
    for (const Value& need : module["Needs"].array()) {
        if (need.text() == description_keys::kNetwork) rows.push_back({translated("uses the network")});
        if (need.text() == description_keys::kRoot) rows.push_back({translated("is root")});
    }
    for (const Value& folder : module["Writes"].array())
        rows.push_back({filled(translated("writes {1}"), {folder.text()})});
    if (const std::int64_t late = module["MakeUp"].integer(); late > 0)
        rows.push_back({filled(translated("when missed, made up for within {1}"), {durationText(late)})});
    return rows;
}

}  // namespace quorel
