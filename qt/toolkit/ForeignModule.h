#pragma once

#include "configurator/VXDescribedPlugIn.h"

namespace quorel::qt {

/// The class of a folder with a class of its own, which only another settings application can show: the folder is known
/// by its words, and the options of its Schedules stay untouched. Main thread.
class ForeignModuleClass : public VXPrefPanePlugInClass {
public:
    explicit ForeignModuleClass(OptionsForms& forms) : _forms(forms) {}
    /// Refuses a folder that does not say its type and a name.
    bool initializeClass(const std::shared_ptr<quorel::Bundle>& bundle) override;
    void terminateClass() override { _action.reset(); }
    std::shared_ptr<VXPrefPanePlugInProtocol> create() override;

private:
    OptionsForms& _forms;
    std::optional<ActionDescription> _action;
};

}  // namespace quorel::qt
