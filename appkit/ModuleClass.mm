#import "appkit/ModuleClass.h"

#import <Quorel/VXPrefPanePlugInProtocol.h>

#include <optional>
#include <type_traits>

#include "appkit/Controls.h"
#include "appkit/Guard.h"
#include "appkit/Strings.h"
#include "appkit/Values.h"
#include "configurator/VXPrefPanePlugInProtocol.h"

namespace quorel::appkit {

namespace {

using NativeModule = NSObject<VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages>;

/// What `ask` answers; nothing when it raises something.
template <class Ask>
void answer(Ask ask, std::optional<decltype(ask())> &answered) {
    @try {
        answered = ask();
    } @catch (id) {
    }
}

/// What a module answers; the default of that type when it raises or throws something. Nothing is said of a module that
/// does not work; it is passed over.
template <class Ask>
auto guarded(Ask ask) -> decltype(ask()) {
    using Answer = decltype(ask());
    if constexpr (std::is_void_v<Answer>) {
        guarded([&] { return ask(), true; });
    } else {
        std::optional<Answer> answered;
        runGuarded([&] { answer(ask, answered); });
        return answered.value_or(Answer());
    }
}

class Module : public VXPrefPanePlugInProtocol {
public:
    explicit Module(NativeModule *module) : _module(module) {}

    bool isBaseModule() override {
        return guarded([this] { return [native() isBaseModule]; });
    }
    void loadNib() override {
        guarded([this] { [native() loadNib]; });
    }
    std::shared_ptr<quorel::View> setupView() override {
        NSView *view = guarded([this] { return [native() setupView]; });
        return [view isKindOfClass:[NSView class]] ? wrapped<View>(view) : nullptr;
    }
    bool needsWakeUp() override {
        return guarded([this] { return [native() needsWakeUp]; });
    }
    void setNeedsWakeUp(bool needs) override {
        guarded([=, this] { [native() setNeedsWakeUp:needs]; });
    }
    bool needsWakeUpByDefault() override {
        return guarded([this] { return [native() needsWakeUpByDefault]; });
    }
    bool needsStartup() override {
        return guarded([this] { return [native() needsStartup]; });
    }
    void setNeedsStartup(bool needs) override {
        guarded([=, this] { [native() setNeedsStartup:needs]; });
    }
    bool needsStartupByDefault() override {
        return guarded([this] { return [native() needsStartupByDefault]; });
    }
    std::optional<std::string> pluginName() override {
        return text(guarded([this] { return [native() pluginName]; }));
    }
    void fillSetupInterfaceFromParameters() override {
        guarded([this] { [native() fillSetupInterfaceFromParameters]; });
    }
    void fillParametersFromSetupInterface() override {
        guarded([this] { [native() fillParametersFromSetupInterface]; });
    }
    Value defaultParameters() override {
        return valueFromObject(guarded([this] { return [native() defaultParameters]; }));
    }
    std::string actionString() override {
        return text(guarded([this] { return [native() actionString]; })).value_or(std::string());
    }
    std::string pluginIdentifier() override {
        return text(guarded([this] { return [native() pluginIdentifier]; })).value_or(std::string());
    }
    Value parameters() override {
        return valueFromObject(guarded([this] { return [native() parameters]; }));
    }
    void setParameters(const Value &parameters) override {
        id object = objectFromValue(parameters);
        guarded([=, this] { [native() setParameters:object]; });
    }
    bool respondsToCheckboxAction() override { return [native() respondsToSelector:@selector(checkboxAction:)]; }
    void checkboxAction(const Object *) override {
        guarded([this] { [native() checkboxAction:nil]; });
    }

private:
    NativeModule *native() const { return _module.get(); }
    static std::optional<std::string> text(id object) {
        if (![object isKindOfClass:[NSString class]]) return {};
        return stdString(object);
    }

    Retained<NativeModule> _module;
};

class ModuleClass : public VXPrefPanePlugInClass {
public:
    ModuleClass(Class aClass, NSBundle *bundle) : _class(aClass), _bundle(bundle) {}

    bool initializeClass(const std::shared_ptr<quorel::Bundle> &) override {
        return guarded([this] { return [_class initializeClass:_bundle.get()]; });
    }
    void terminateClass() override {
        guarded([this] { [_class terminateClass]; });
    }
    std::shared_ptr<VXPrefPanePlugInProtocol> create() override {
        NativeModule *module = guarded([this]() -> NativeModule * { return [[_class alloc] init]; });
        return wrapped<Module>([module autorelease]);
    }

private:
    Class _class;
    Retained<NSBundle> _bundle;
};

}  // namespace

std::shared_ptr<Object> moduleClass(Class aClass, NSBundle *bundle) {
    // By its name: a literal would stand for this bundle's own copy, which the runtime here does not know by address.
    Protocol *contract = NSProtocolFromString(@"VXPrefPanePlugInProtocol");
    if (!aClass || !contract || ![aClass conformsToProtocol:contract]) return nullptr;
    return std::make_shared<ModuleClass>(aClass, bundle);
}

}  // namespace quorel::appkit
