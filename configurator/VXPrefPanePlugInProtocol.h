#pragma once

#include <memory>
#include <optional>
#include <string>

#include "model/Value.h"
#include "platform/Bundle.h"
#include "platform/View.h"

namespace quorel {

/// An action module: what one type of action is called, how it is set up and what it needs.
/// One object serves all Schedules of its type: it is given a Schedule's parameters before it is asked about them.
/// The two flags are part of the parameters. Main thread.
class VXPrefPanePlugInProtocol : public Object {
public:
    /// Base modules of the product are listed first.
    virtual bool isBaseModule() = 0;
    /// Loads the interface, so that `setupView` can answer. Called once.
    virtual void loadNib() = 0;
    /// The options view, or null. Its height decides the height of the edit sheet.
    virtual std::shared_ptr<View> setupView() = 0;
    virtual bool needsWakeUp() = 0;
    /// A module that leaves no choice keeps its own value.
    virtual void setNeedsWakeUp(bool needs) = 0;
    virtual bool needsWakeUpByDefault() = 0;
    virtual bool needsStartup() = 0;
    /// A module that leaves no choice keeps its own value.
    virtual void setNeedsStartup(bool needs) = 0;
    virtual bool needsStartupByDefault() = 0;
    /// The display name; a module without one is not used. Should be unique.
    virtual std::optional<std::string> pluginName() = 0;
    virtual void fillSetupInterfaceFromParameters() = 0;
    virtual void fillParametersFromSetupInterface() = 0;
    /// Parameters of a fresh Schedule: a dictionary, or absent.
    virtual Value defaultParameters() = 0;
    /// One line: what the action does with the current parameters.
    virtual std::string actionString() = 0;

    /// The stable identifier that Schedules carry as their "Action Type".
    virtual std::string pluginIdentifier() = 0;
    /// The current parameters, both flags included, or absent.
    virtual Value parameters() = 0;
    virtual void setParameters(const Value& parameters) = 0;

    /// Optional: reacts after the flags were set from the sheet's check boxes, and may change them.
    virtual bool respondsToCheckboxAction() { return false; }
    virtual void checkboxAction(const Object* sender) { static_cast<void>(sender); }
};

/// The class of a module, as found in its bundle. A class that is not of this kind is no module.
class VXPrefPanePlugInClass : public Object {
public:
    virtual bool initializeClass(const std::shared_ptr<Bundle>& bundle) = 0;  ///< false refuses the module
    virtual void terminateClass() = 0;
    virtual std::shared_ptr<VXPrefPanePlugInProtocol> create() = 0;
};

}  // namespace quorel
