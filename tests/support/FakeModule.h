#pragma once

#include <memory>
#include <string>
#include <vector>

#include "configurator/VXConfigurator.h"
#include "headless/HeadlessPlatform.h"
#include "model/Dictionary.h"

namespace quorel::test {

/// A module that keeps its two flags in its parameters and writes down what it is sent.
class FakeModule : public VXPrefPanePlugInProtocol {
public:
    std::string identifier;
    std::optional<std::string> name;
    bool base = true;
    bool startupChangeable = true;
    bool wakeUpChangeable = true;
    bool startupByDefault = false;
    bool wakeUpByDefault = false;
    Value defaults = Value(Dictionary{{"startup", false}, {"wake", false}});
    Value current;
    std::shared_ptr<headless::View> view;
    bool reactsToCheckboxes = false;
    std::function<void(FakeModule&)> onCheckbox;
    std::function<void()> whenGivenParameters;
    std::vector<std::string> calls;  ///< what changed the module or its view, in order

    bool isBaseModule() override { return base; }
    void loadNib() override { calls.push_back("loadNib"); }
    std::shared_ptr<View> setupView() override { return view; }
    bool needsWakeUp() override { return flag("wake"); }
    void setNeedsWakeUp(bool needs) override { setFlag("wake", needs, wakeUpChangeable); }
    bool needsWakeUpByDefault() override { return wakeUpByDefault; }
    bool needsStartup() override { return flag("startup"); }
    void setNeedsStartup(bool needs) override { setFlag("startup", needs, startupChangeable); }
    bool needsStartupByDefault() override { return startupByDefault; }
    std::optional<std::string> pluginName() override { return name; }
    void fillSetupInterfaceFromParameters() override { calls.push_back("fillSetupInterface"); }
    void fillParametersFromSetupInterface() override { calls.push_back("fillParameters"); }
    Value defaultParameters() override { return defaults; }
    std::string actionString() override { return "does " + std::to_string(current["n"].intValue()); }
    std::string pluginIdentifier() override { return identifier; }
    Value parameters() override { return current; }
    void setParameters(const Value& parameters) override {
        calls.push_back(parameters.isAbsent() ? "setParameters none" : "setParameters");
        current = parameters;
        if (whenGivenParameters) whenGivenParameters();
    }
    bool respondsToCheckboxAction() override { return reactsToCheckboxes; }
    void checkboxAction(const Object* sender) override {
        calls.push_back(sender ? "checkboxAction sender" : "checkboxAction");
        if (onCheckbox) onCheckbox(*this);
    }

private:
    bool flag(const char* key) const { return current[key].intValue() != 0; }
    void setFlag(const char* key, bool needs, bool changeable) {
        calls.push_back(std::string(key) + (needs ? " on" : " off"));
        if (changeable) current = current.with(key, needs);
    }
};

/// The class of a FakeModule: hands out the one module it was given.
class FakeModuleClass : public VXPrefPanePlugInClass {
public:
    explicit FakeModuleClass(std::shared_ptr<FakeModule> theModule) : module(std::move(theModule)) {}
    bool initializeClass(const std::shared_ptr<Bundle>&) override {
        ++initialized;
        return accepts;
    }
    void terminateClass() override { ++terminated; }
    std::shared_ptr<VXPrefPanePlugInProtocol> create() override {
        ++created;
        return module;
    }

    std::shared_ptr<FakeModule> module;
    bool accepts = true;
    int initialized = 0;
    int terminated = 0;
    int created = 0;
};

/// Puts a module's bundle into a folder.
inline std::shared_ptr<FakeModuleClass> installModule(headless::Bundles& bundles, std::shared_ptr<FakeModule> module,
                                                      const std::string& directory, const std::string& fileName) {
    const std::string path = directory + "/" + fileName + ".vxplugin";
    auto moduleClass = std::make_shared<FakeModuleClass>(std::move(module));
    auto bundle = std::make_shared<headless::Bundle>(path);
    bundle->info = Value(Dictionary{{"VXEditClass", "EditClass"}});
    bundle->classes["EditClass"] = moduleClass;
    bundles.byPath[path] = bundle;
    bundles.directories[directory].push_back(path);
    return moduleClass;
}

inline std::shared_ptr<FakeModule> makeModule(std::string_view identifier, std::string_view name) {
    auto module = std::make_shared<FakeModule>();
    module->identifier = identifier;
    module->name = name;
    return module;
}

}  // namespace quorel::test
