#include "ctl/CheckModule.h"

#include <filesystem>

#include "actions/ActionDescription.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/ModuleText.h"
#include "linux/units/ModuleRegistry.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "words/DescriptionText.h"
#include "words/Language.h"

namespace quorel {

namespace {

namespace fs = std::filesystem;
namespace keys = wire::keys;

constexpr std::string_view kExtension = ".vxplugin";

/// As the daemon will read it, beside those that are installed.
ActionDescription moduleIn(const fs::path& folder, const std::string& root) {
    auto module = readModule(TrustedFolder::beforeItIsCopied(folder.parent_path()), folder.filename());
    ModuleRegistry installed(root);
    installed.scan();
    const ActionDescription* same = installed.find(module.type);
    const bool isTaken = same && same->isSound() && same->bundle != module.bundle;
    if (module.isSound() && isTaken) module.faults.push_back({description_fault::kTaken, {}});
    return module;
}

}  // namespace

ExitStatus checkModule(const Page& page, const CommandLine& line) {
    std::error_code error;
    const fs::path folder = fs::absolute(line.arguments[0], error).lexically_normal();
    const ActionDescription module = moduleIn(folder.has_filename() ? folder : folder.parent_path(), line.root);
    const bool isNamed = module.bundle.ends_with(kExtension);
    if (!isNamed) complain(filled(translated("The name of a module's folder ends in \"{1}\"."), {kExtension}));
    Array faults;
    for (const auto& [code, key] : module.faults)
        faults.push_back(Dictionary{{keys::kFault, code}, {keys::kFaultKey, key}});
    if (line.json) page.line(jsonOutput(module.value().with("Faults", faults).dictionary()));
    if (!line.json && module.isSound()) page.table(moduleRows(module.value()));
    for (const auto& [code, key] : module.faults) complain(descriptionFaultText(std::string(code), key));
    return isNamed && module.isSound() ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace quorel
