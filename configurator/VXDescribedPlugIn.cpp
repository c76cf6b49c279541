#include "configurator/VXDescribedPlugIn.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "model/ActionParameters.h"

namespace quorel {

namespace {

constexpr std::string_view kModuleExtension = "vxplugin";

ActionDescription descriptionOf(const Bundle& bundle) {
    const std::string path = bundle.bundlePath();
    return ActionDescription::from(path.substr(path.rfind('/') + 1), bundle.infoDictionary());
}

}  // namespace

VXDescribedPlugIn::VXDescribedPlugIn(ActionDescription action, OptionsForms& forms)
    : _action(std::move(action)), _forms(forms), _parameters(_action.standards()) {}

void VXDescribedPlugIn::loadNib() {
    if (!_form && (!_action.isSound() || !_action.options.empty())) _form = _forms.formOf(_action);
}

bool VXDescribedPlugIn::needsWakeUp() {
    return _action.wakesUp.completed(_parameters[parameters::kNeedsWakeUp]);
}

void VXDescribedPlugIn::setNeedsWakeUp(bool needs) {
    if (!_action.wakesUp.isFixed) _parameters = _parameters.with(parameters::kNeedsWakeUp, needs);
}

bool VXDescribedPlugIn::needsStartup() {
    return _action.startsUp.completed(_parameters[parameters::kNeedsStartup]);
}

void VXDescribedPlugIn::setNeedsStartup(bool needs) {
    if (!_action.startsUp.isFixed) _parameters = _parameters.with(parameters::kNeedsStartup, needs);
}

void VXDescribedPlugIn::fillSetupInterfaceFromParameters() {
    if (_form) _form->show(_parameters);
}

void VXDescribedPlugIn::fillParametersFromSetupInterface() {
    if (!_form) return;
    const Value shown = _form->shown();
    for (const Option& option : _action.options)
        _parameters = _parameters.with(option.key, option.completed(shown[option.key]));
}

bool VXDescribedPlugInClass::initializeClass(const std::shared_ptr<Bundle>& bundle) {
    _bundle.reset();
    if (!bundle) return false;
    const ActionDescription action = descriptionOf(*bundle);
    if (action.type.empty() || action.names.size() == 0) return false;
    if (!action.isSound() && isSoundElsewhere(action.type, bundle->bundlePath())) return false;
    _bundle = bundle;
    return true;
}

bool VXDescribedPlugInClass::isSoundElsewhere(std::string_view type, const std::string& path) {
    const std::string folder = path.substr(0, path.rfind('/'));
    const std::vector<std::string> paths = _bundles.pathsForResourcesOfTypeInDirectory(kModuleExtension, folder);
    return std::ranges::any_of(paths, [&](const std::string& other) {
        const auto bundle = other == path ? nullptr : _bundles.bundleWithPath(other);
        if (!bundle) return false;
        const ActionDescription action = descriptionOf(*bundle);
        return action.type == type && action.isSound();
    });
}

std::shared_ptr<VXPrefPanePlugInProtocol> VXDescribedPlugInClass::create() {
    const std::shared_ptr<Bundle> bundle = std::exchange(_bundle, nullptr);
    return bundle ? std::make_shared<VXDescribedPlugIn>(descriptionOf(*bundle), _forms) : nullptr;
}

}  // namespace quorel
