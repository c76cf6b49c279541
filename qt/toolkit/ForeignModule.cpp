#include "qt/toolkit/ForeignModule.h"

#include "qt/toolkit/Text.h"
#include "qt/toolkit/Views.h"
#include "qt/window/Card.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

class ForeignModule : public VXDescribedPlugIn {
public:
    using VXDescribedPlugIn::VXDescribedPlugIn;
    void loadNib() override {
        auto* const note = makeLabel(nullptr, Weight::kText, qString(translated("Set up in SystemPreferences.")));
        _note = std::make_shared<View>(note);
    }
    std::shared_ptr<quorel::View> setupView() override { return _note; }

private:
    std::shared_ptr<View> _note;
};

}  // namespace

bool ForeignModuleClass::initializeClass(const std::shared_ptr<quorel::Bundle>& bundle) {
    _action.reset();
    const std::string path = bundle->bundlePath();
    ActionDescription action = ActionDescription::from(path.substr(path.rfind('/') + 1), bundle->infoDictionary());
    if (action.type.empty() || action.names.size() == 0) return false;
    action.options.clear();  // which its class knows, and this window does not
    _action = std::move(action);
    return true;
}

std::shared_ptr<VXPrefPanePlugInProtocol> ForeignModuleClass::create() {
    return _action ? std::make_shared<ForeignModule>(*_action, _forms) : nullptr;
}

}  // namespace quorel::qt
