#include "linux/units/ModuleRegistry.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "ProductVersion.h"
#include "actions/DescriptionKeys.h"
#include "kit/MOLLog.h"

namespace quorel {

namespace {

constexpr std::string_view kExtension = ".vxplugin";
constexpr const char* kResources = "Resources";
constexpr std::size_t kMostModules = 256;

/// A link is refused with ELOOP, or as no folder.
std::string_view faultOf(int error, std::string_view otherwise) {
    return error == EPERM || error == ELOOP || error == ENOTDIR ? description_fault::kUntrusted : otherwise;
}

}  // namespace

void ModuleRegistry::scan() {
    _modules.clear();
    const TrustedFolder plugIns = TrustedFolder::open(_root, product::kPlugInsFolder);
    if (!plugIns) {
        if (errno != ENOENT)
            say(std::string("What lies in ") + product::kPlugInsFolder,
                {faultOf(errno, description_fault::kUnreadable), {}});
        return;
    }
    for (const std::string& name : plugIns.names()) {
        if (!name.ends_with(kExtension) || _modules.size() == kMostModules) continue;
        ActionDescription module = readModule(plugIns, name);
        const ActionDescription* first = find(module.type);
        if (module.isSound() && first && first->isSound()) module.faults.push_back({description_fault::kTaken, {}});
        if (!module.isSound()) say("The module " + name, module.faults.front());
        _modules.push_back(std::move(module));
    }
}

ActionDescription readModule(const TrustedFolder& plugIns, const std::string& name) {
    ActionDescription refused;
    refused.bundle = name;
    errno = 0;
    const TrustedFolder bundle = plugIns.folder(name);
    const TrustedFolder resources = bundle ? bundle.folder(kResources) : TrustedFolder();
    const auto bytes =
        resources ? resources.contents("Info-gnustep.plist", description_keys::kMostBytes) : std::nullopt;
    if (!bytes) {
        refused.faults.push_back({faultOf(errno, description_fault::kUnreadable), {}});
        return refused;
    }
    ActionDescription module = ActionDescription::read(name, *bytes);
    if (module.program.empty() || !module.isSound()) return module;
    const FileDescriptor program = resources.file(module.program);
    struct stat status {};
    const bool isProgram = program && fstat(program.get(), &status) == 0 && (status.st_mode & S_IXUSR) != 0 &&
                           (status.st_mode & S_IXOTH) != 0;
    if (!isProgram) module.faults.push_back({description_fault::kBadProgram, {}});
    return module;
}

const ActionDescription* ModuleRegistry::find(const std::string& type) const {
    const ActionDescription* broken = nullptr;
    for (const ActionDescription& module : _modules) {
        if (type.empty() || module.type != type) continue;
        if (module.isSound()) return &module;
        if (!broken) broken = &module;
    }
    return broken;
}

std::string ModuleRegistry::programPath(const ActionDescription& module) const {
    return _root + product::kPlugInsFolder + "/" + module.bundle + "/" + kResources + "/" + module.program;
}

void ModuleRegistry::say(const std::string& who, const DescriptionFault& fault) {
    const std::string where = fault.key.empty() ? "" : " (" + fault.key + ")";
    const std::string what = std::string(fault.code) + where;
    if (_said.emplace(who, what).second) MOLLog("%s cannot act: %s.", who.c_str(), what.c_str());
}

}  // namespace quorel
