#include "ctl/CheckModule.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "actions/ActionDescription.h"
#include "actions/DescriptionKeys.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/ModuleText.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "words/Language.h"

namespace quorel {

namespace {

namespace fs = std::filesystem;
namespace keys = wire::keys;

constexpr std::string_view kExtension = ".vxplugin";

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path);
    std::string bytes;
    // One more than there may be: what is longer is refused.
    for (char c = 0; bytes.size() <= description_keys::kMostBytes && file.get(c);) bytes += c;
    return bytes;
}

bool isForEverybody(const fs::path& program) {
    constexpr fs::perms kExecutable = fs::perms::owner_exec | fs::perms::others_exec;
    std::error_code error;
    const fs::file_status status = fs::symlink_status(program, error);
    return fs::is_regular_file(status) && (status.permissions() & kExecutable) == kExecutable;
}

ActionDescription descriptionIn(const fs::path& folder) {
    const fs::path resources = folder / "Resources";
    auto module = ActionDescription::read(folder.filename(), contentsOf(resources / "Info-gnustep.plist"));
    if (module.isSound() && !module.program.empty() && !isForEverybody(resources / module.program))
        module.faults.push_back({description_fault::kBadProgram, {}});
    return module;
}

}  // namespace

ExitStatus checkModule(const Page& page, const std::string& path, bool json) {
    std::error_code error;
    const fs::path folder = fs::absolute(path, error).lexically_normal();
    const ActionDescription module = descriptionIn(folder.has_filename() ? folder : folder.parent_path());
    const bool isNamed = module.bundle.ends_with(kExtension);
    if (!isNamed) complain(filled(translated("The name of a module's folder ends in \"{1}\"."), {kExtension}));
    Array faults;
    for (const auto& [code, key] : module.faults)
        faults.push_back(Dictionary{{keys::kFault, code}, {keys::kFaultKey, key}});
    if (json) page.line(jsonOutput(module.value().with("Faults", faults).dictionary()));
    if (!json && module.isSound()) page.table(moduleRows(module.value()));
    for (const DescriptionFault& fault : module.faults) complain(faultText(std::string(fault.code), fault.key));
    return isNamed && module.isSound() ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace quorel
