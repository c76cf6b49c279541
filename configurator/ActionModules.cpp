#include <algorithm>

#include "configurator/NoModule.h"
#include "configurator/VXConfigurator.h"

namespace quorel {

namespace {

constexpr std::string_view kModuleExtension = "vxplugin";
constexpr std::string_view kClassKey = "VXEditClass";
constexpr std::string_view kSharedModulesFolder = "/Library/Application Support/Quorel";

NoModule& noModule() {
    static NoModule none;
    return none;
}

/// The module class of an open bundle, or null.
std::shared_ptr<VXPrefPanePlugInClass> moduleClassOf(Bundle& bundle) {
    bundle.load();
    const Value className = bundle.objectForInfoDictionaryKey(kClassKey);
    if (!className.isText()) return nullptr;
    return std::dynamic_pointer_cast<VXPrefPanePlugInClass>(bundle.classNamed(className.text()));
}

}  // namespace

void VXConfigurator::loadModules() {
    _plugins.emplace();
    _pluginNames.clear();
    outlets.popUpType->removeAllItems();

    for (const auto& path :
         _platform.bundles.pathsForResourcesOfTypeInDirectory(kModuleExtension, _bundle->builtInPlugInsPath())) {
        const auto moduleBundle = _platform.bundles.bundleWithPath(path);
        if (!moduleBundle) continue;
        const auto moduleClass = moduleClassOf(*moduleBundle);
        if (!moduleClass || !moduleClass->initializeClass(moduleBundle)) continue;
        const auto module = moduleClass->create();
        if (!module) continue;
        const std::string identifier = module->pluginIdentifier();
        if (identifier.empty() || _plugins->contains(identifier)) continue;
        const auto name = module->pluginName();
        if (!name) continue;
        _plugins->emplace(identifier, module);
        _pluginNames.insert_or_assign(*name, identifier);
        module->loadNib();
    }

    const auto addItems = [this](bool baseModules) {
        for (const auto& [identifier, module] : *_plugins) {
            if (module->isBaseModule() != baseModules) continue;
            outlets.popUpType->addItemWithTitle(module->pluginName().value_or(std::string()));
        }
    };
    addItems(true);
    outlets.popUpType->addSeparatorItem();
    addItems(false);
}

// Goes to folders and classes that loading never went to: a class may hold something without having been accepted.
void VXConfigurator::unloadModules() {
    _plugins.reset();
    for (const std::string& folder : {_bundle->builtInPlugInsPath(), std::string(kSharedModulesFolder)}) {
        for (const auto& path : _platform.bundles.pathsForResourcesOfTypeInDirectory(kModuleExtension, folder)) {
            const auto moduleBundle = _platform.bundles.bundleWithPath(path);
            if (!moduleBundle) continue;
            if (const auto moduleClass = moduleClassOf(*moduleBundle)) moduleClass->terminateClass();
        }
    }
}

bool VXConfigurator::isRegistered(const Value& identifier) const {
    return &moduleOfType(identifier) != &noModule();
}

VXPrefPanePlugInProtocol& VXConfigurator::moduleOfType(const Value& identifier) const {
    if (!_plugins || !identifier.isText()) return noModule();
    // One after another: there are a handful, which begin alike and differ in length.
    const auto found = std::ranges::find(*_plugins, identifier.text(), &Plugins::value_type::first);
    return found == _plugins->end() ? noModule() : *found->second;
}

VXPrefPanePlugInProtocol& VXConfigurator::chosenModule() const {
    const auto found = _pluginNames.find(outlets.popUpType->titleOfSelectedItem().value_or(""));
    return moduleOfType(found == _pluginNames.end() ? Value() : Value(found->second));
}

}  // namespace quorel
