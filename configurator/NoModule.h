#pragma once

#include <memory>
#include <optional>
#include <string>

#include "configurator/VXPrefPanePlugInProtocol.h"

namespace quorel {

/// Stands for the module of a type that none is registered for: has no name and no options, keeps nothing, and leaves
/// no choice.
class NoModule : public VXPrefPanePlugInProtocol {
public:
    bool isBaseModule() override { return false; }
    void loadNib() override {}
    std::shared_ptr<View> setupView() override { return nullptr; }
    bool needsWakeUp() override { return false; }
    void setNeedsWakeUp(bool) override {}
    bool needsWakeUpByDefault() override { return false; }
    bool needsStartup() override { return false; }
    void setNeedsStartup(bool) override {}
    bool needsStartupByDefault() override { return false; }
    std::optional<std::string> pluginName() override { return {}; }
    void fillSetupInterfaceFromParameters() override {}
    void fillParametersFromSetupInterface() override {}
    Value defaultParameters() override { return {}; }
    std::string actionString() override { return {}; }
    std::string pluginIdentifier() override { return {}; }
    Value parameters() override { return {}; }
    void setParameters(const Value&) override {}
};

}  // namespace quorel
