#include "ctl/ModuleText.h"

#include <string_view>

#include "actions/DescriptionKeys.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "words/DescriptionText.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

std::string abilityText(const Value& module) {
    const std::string& fault = module[keys::kFault].text();
    if (!fault.empty())
        return filled(translated("cannot act: {1}"), {descriptionFaultText(fault, module[keys::kFaultKey].text())});
    if (module[keys::kProgram].isAbsent()) return translated("carried out by the daemon itself");
    const std::string limit = durationText(module[keys::kTimeLimit].integer());
    if (module[keys::kRunsAs].text() == description_keys::kUser)
        return filled(translated("as the user at the computer, {1} at most"), {limit});
    return filled(translated("in a sandbox, {1} at most"), {limit});
}

}  // namespace

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
