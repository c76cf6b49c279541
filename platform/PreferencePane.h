#pragma once

#include <memory>

#include "platform/Bundle.h"
#include "platform/View.h"

namespace quorel {

/// What every pane inherits from its host. Main thread.
class PreferencePane : public Object {
public:
    enum : unsigned { UnselectCancel = 0, UnselectNow = 1, UnselectLater = 2 };

    virtual void willSelect() {}
    virtual void didSelect() {}
    virtual void willUnselect() {}
    virtual unsigned shouldUnselect() const { return UnselectNow; }

    std::shared_ptr<View> mainView() const { return _mainView.lock(); }
    void setMainView(const std::shared_ptr<View>& view) { _mainView = view; }
    const std::shared_ptr<Bundle>& bundle() const { return _bundle; }

protected:
    /// False, and the pane is of no use, without a bundle that says who it is.
    bool initWithBundle(std::shared_ptr<Bundle> bundle) {
        if (!bundle || !bundle->objectForInfoDictionaryKey("CFBundleIdentifier").isText()) return false;
        _bundle = std::move(bundle);
        return true;
    }

private:
    std::shared_ptr<Bundle> _bundle;
    std::weak_ptr<View> _mainView;
};

}  // namespace quorel
