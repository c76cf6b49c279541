#include "daemon/modules/ModuleRegistry.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "ProductVersion.h"
#include "kit/MOLLog.h"
#include "model/PropertyList.h"
#include "model/PropertyListText.h"

namespace quorel {

namespace {

constexpr std::string_view kExtension = ".vxplugin";
constexpr const char* kResources = "Resources";
constexpr std::size_t kMostModules = 256;
constexpr std::size_t kLongestInfo = std::size_t{64} * 1024;

/// A link is refused with ELOOP, or as no folder.
std::string_view faultOf(int error, std::string_view otherwise) {
    return error == EPERM || error == ELOOP || error == ENOTDIR ? module_fault::kUntrusted : otherwise;
}

}  // namespace

void ModuleRegistry::scan() {
    _modules.clear();
    const TrustedFolder plugIns = TrustedFolder::open(_root, product::kPlugInsFolder);
    if (!plugIns) {
        if (errno != ENOENT)
            say(std::string("What lies in ") + product::kPlugInsFolder, faultOf(errno, module_fault::kUnreadable));
        return;
    }
    for (const std::string& name : plugIns.names()) {
        if (!name.ends_with(kExtension) || _modules.size() == kMostModules) continue;
        ModuleInfo module = read(plugIns, name);
        if (!module.action.empty() && find(module.action)) module.fault = module_fault::kTaken;
        if (!module.fault.empty()) say("The module " + name, module.fault);
        _modules.push_back(std::move(module));
    }
}

ModuleInfo ModuleRegistry::read(const TrustedFolder& plugIns, const std::string& name) const {
    ModuleInfo refused;
    refused.bundle = name;
    errno = 0;
    const TrustedFolder bundle = plugIns.folder(name);
    const TrustedFolder resources = bundle ? bundle.folder(kResources) : TrustedFolder();
    const auto bytes = resources ? resources.contents("Info-gnustep.plist", kLongestInfo) : std::nullopt;
    if (!bytes) {
        refused.fault = faultOf(errno, module_fault::kUnreadable);
        return refused;
    }
    Value dictionary = decodePropertyList(*bytes, kLongestInfo);
    if (dictionary.isAbsent()) dictionary = decodePropertyListText(*bytes);
    if (!dictionary.isDictionary()) {
        refused.fault = module_fault::kUnreadable;
        return refused;
    }
    ModuleInfo module = ModuleInfo::from(name, dictionary);
    if (module.program.empty() || !module.fault.empty()) return module;
    const FileDescriptor program = resources.file(module.program);
    struct stat status {};
    const bool isProgram = program && fstat(program.get(), &status) == 0 && (status.st_mode & S_IXUSR) != 0 &&
                           (status.st_mode & S_IXOTH) != 0;
    if (!isProgram) module.fault = module_fault::kBadProgram;
    return module;
}

const ModuleInfo* ModuleRegistry::find(const std::string& action) const {
    const auto found = std::ranges::find(_modules, action, &ModuleInfo::action);
    return action.empty() || found == _modules.end() ? nullptr : &*found;
}

std::string ModuleRegistry::programPath(const ModuleInfo& module) const {
    return _root + product::kPlugInsFolder + "/" + module.bundle + "/" + kResources + "/" + module.program;
}

void ModuleRegistry::say(const std::string& who, std::string_view fault) {
    if (_said.emplace(who, fault).second) MOLLog("%s cannot act: %s.", who.c_str(), std::string(fault).c_str());
}

}  // namespace quorel
