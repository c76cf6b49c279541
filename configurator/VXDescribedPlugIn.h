#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "actions/ActionDescription.h"
#include "configurator/VXPrefPanePlugInProtocol.h"
#include "platform/Bundle.h"

namespace quorel {

/// The controls of one action's options. Main thread.
class OptionsForm {
public:
    virtual ~OptionsForm() = default;
    virtual std::shared_ptr<View> view() = 0;
    /// Of complete parameters.
    virtual void show(const Value& parameters) = 0;
    /// What stands in the controls: a dictionary of options' keys.
    virtual Value shown() = 0;
};

/// What a face gives to described actions. Main thread.
class OptionsForms {
public:
    virtual ~OptionsForms() = default;
    /// Of an action that has options, or whose description is not sound: then it says what is wrong. Never null.
    virtual std::unique_ptr<OptionsForm> formOf(const ActionDescription& action) = 0;
    /// The one that the face speaks, as "en".
    virtual std::string language() const = 0;
};

/// A module whose folder has a description and no code: it answers out of that, the same in every face.
class VXDescribedPlugIn : public VXPrefPanePlugInProtocol {
public:
    /// `forms` must outlive it.
    VXDescribedPlugIn(ActionDescription action, OptionsForms& forms);

    bool isBaseModule() override { return _action.isBase; }
    void loadNib() override;
    std::shared_ptr<View> setupView() override { return _form ? _form->view() : nullptr; }
    bool needsWakeUp() override;
    void setNeedsWakeUp(bool needs) override;
    bool needsWakeUpByDefault() override { return _action.wakesUp.standard; }
    bool needsStartup() override;
    void setNeedsStartup(bool needs) override;
    bool needsStartupByDefault() override { return _action.startsUp.standard; }
    std::optional<std::string> pluginName() override { return inLanguage(_action.names, _forms.language()); }
    void fillSetupInterfaceFromParameters() override;
    void fillParametersFromSetupInterface() override;
    Value defaultParameters() override { return _action.standards(); }
    std::string actionString() override { return _action.line(_parameters, _forms.language()); }
    std::string pluginIdentifier() override { return _action.type; }
    Value parameters() override { return _parameters; }
    void setParameters(const Value& parameters) override { _parameters = _action.completed(parameters); }

private:
    const ActionDescription _action;
    OptionsForms& _forms;
    std::unique_ptr<OptionsForm> _form;
    Value _parameters;  ///< complete
};

/// The class of such modules. A face has one for each bundle that asks for it.
class VXDescribedPlugInClass : public VXPrefPanePlugInClass {
public:
    /// Both must outlive it and what it makes.
    VXDescribedPlugInClass(Bundles& bundles, OptionsForms& forms) : _bundles(bundles), _forms(forms) {}

    /// Refuses a folder that does not say its type and a name, and one that is not sound where another folder beside it
    /// is, and says the same type.
    bool initializeClass(const std::shared_ptr<Bundle>& bundle) override;
    void terminateClass() override { _bundle.reset(); }
    /// Of the bundle that `initializeClass` was given last, which is let go; null without one.
    std::shared_ptr<VXPrefPanePlugInProtocol> create() override;

private:
    /// In another folder beside the one at the path.
    bool isSoundElsewhere(std::string_view type, const std::string& path);

    Bundles& _bundles;
    OptionsForms& _forms;
    std::shared_ptr<Bundle> _bundle;
};

}  // namespace quorel
