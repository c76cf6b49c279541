#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

class ActionModulesTest : public ConfiguratorTest {
protected:
    std::shared_ptr<FakeModuleClass> add(const std::string& file, const char* identifier, const char* name) {
        return installModule(host.bundles, makeModule(identifier, name), kFolder, file);
    }
    headless::Bundle& bundleOf(const std::string& file) {
        return dynamic_cast<headless::Bundle&>(*host.bundles.byPath.at(kFolder + "/" + file + ".vxplugin"));
    }
    std::vector<std::string> registered() const {
        std::vector<std::string> identifiers;
        for (const auto& [identifier, module] : *configurator->plugins()) identifiers.push_back(identifier);
        return identifiers;
    }
    using Items = std::vector<std::optional<std::string>>;
    const std::string kFolder = "/pane/PlugIns";
    const std::string kSharedFolder = "/Library/Application Support/Quorel";
};

TEST_F(ActionModulesTest, SkipsWhatIsNoModuleAndGoesOn) {
    struct NoModule : Object {};
    struct {
        const char* why;
        std::function<void(FakeModuleClass&)> spoil;
        int initialized, created;
    } const cases[] = {
        {"cannot be opened", [&](auto&) { host.bundles.byPath.erase(kFolder + "/A.vxplugin"); }, 0, 0},
        {"no class named", [&](auto&) { bundleOf("A").info = Value(); }, 0, 0},
        {"no such class", [&](auto&) { bundleOf("A").classes.clear(); }, 0, 0},
        {"does not conform", [&](auto&) { bundleOf("A").classes["EditClass"] = std::make_shared<NoModule>(); }, 0, 0},
        {"refuses", [](auto& a) { a.accepts = false; }, 1, 0},
        {"makes no object", [](auto& a) { a.module = nullptr; }, 1, 1},
        {"no identifier", [](auto& a) { a.module->identifier.clear(); }, 1, 1},
        {"no display name", [](auto& a) { a.module->name = std::nullopt; }, 1, 1},
    };
    for (const auto& [why, spoil, initialized, created] : cases) {
        host.bundles.directories.clear();
        const auto moduleClass = add("A", "a", "A");
        const auto module = moduleClass->module;
        spoil(*moduleClass);
        add("B", "b", "B");
        start();
        EXPECT_EQ(registered(), std::vector<std::string>{"b"}) << why;
        EXPECT_EQ(configurator->pluginNames().size(), 1u) << why;
        EXPECT_EQ(ui.popUpType->numberOfItems(), 2) << why;
        EXPECT_EQ(moduleClass->initialized, initialized) << why;
        EXPECT_EQ(moduleClass->created, created) << why;
        EXPECT_TRUE(module->calls.empty()) << why;
    }
}

TEST_F(ActionModulesTest, FirstOfAnIdentifierWinsLastOfANameLeads) {
    const auto first = add("1", "same", "First");
    const auto second = add("2", "same", "Second");
    const auto earlier = add("3", "x", "Twin");
    const auto later = add("4", "b", "Twin");
    start();
    EXPECT_EQ(configurator->plugins()->at("same"), first->module);
    EXPECT_EQ(second->initialized, 1);
    EXPECT_TRUE(second->module->calls.empty());
    EXPECT_EQ(first->module->calls, std::vector<std::string>{"loadNib"});
    EXPECT_EQ(registered(), (std::vector<std::string>{"b", "same", "x"}));
    EXPECT_EQ(configurator->pluginNames(), (VXConfigurator::PluginNames{{"First", "same"}, {"Twin", "b"}}));
    EXPECT_EQ(ui.popUpType->items, (Items{"Twin", "First", "Twin", std::nullopt}));
    for (const auto& twin : {earlier, later}) twin->module->calls.clear();
    host.application.duringNextModal([this] { ui.cancelButton->act(); });
    ui.addButton->act();
    EXPECT_EQ(earlier->module->calls, std::vector<std::string>{"setParameters"});
    EXPECT_GT(later->module->calls.size(), 1u) << "the one that is chosen in the sheet";
}

TEST_F(ActionModulesTest, PopUpListsBaseModulesFirst) {
    struct {
        std::vector<bool> base;
        Items items;
    } const cases[] = {
        {{}, {std::nullopt}},
        {{true, true}, {"0", "1", std::nullopt}},
        {{false, false}, {std::nullopt, "0", "1"}},
        {{false, true, false, true}, {"1", "3", std::nullopt, "0", "2"}},
    };
    for (const auto& [base, items] : cases) {
        host.bundles.directories.clear();
        for (std::size_t i = 0; i < base.size(); ++i) {
            const std::string name = std::to_string(i);
            add(name, name.c_str(), name.c_str())->module->base = base[i];
        }
        start();
        configurator->loadModules();  // starts over
        EXPECT_EQ(ui.popUpType->items, items);
    }
}

TEST_F(ActionModulesTest, UnloadingReleasesAndTerminatesInBothFoldersAndLoadingStartsOver) {
    const auto own = add("A", "a", "A");
    const auto refused = add("B", "b", "B");
    refused->accepts = false;
    const auto shared = installModule(host.bundles, makeModule("c", "C"), kSharedFolder, "C");
    add("D", "d", "D");
    bundleOf("D").classes.clear();
    start();
    EXPECT_EQ(shared->initialized, 0);
    bundleOf("A").loadable = false;  // no reason to skip it where its class is there
    const std::weak_ptr<FakeModule> released = own->module;
    own->module = nullptr;
    configurator->unloadModules();
    EXPECT_FALSE(configurator->plugins());
    EXPECT_TRUE(released.expired());
    EXPECT_EQ(configurator->pluginNames().size(), 1u);
    EXPECT_EQ(ui.popUpType->items, (Items{"A", std::nullopt}));
    EXPECT_EQ(own->terminated, 1);
    EXPECT_EQ(refused->terminated, 1);
    EXPECT_EQ(shared->terminated, 1);
    own->module = makeModule("n", "N");
    configurator->loadModules();
    EXPECT_EQ(registered(), std::vector<std::string>{"n"});
    EXPECT_EQ(configurator->pluginNames(), (VXConfigurator::PluginNames{{"N", "n"}}));
    EXPECT_EQ(own->initialized, 2);
    EXPECT_EQ(shared->initialized, 0);
}

}  // namespace
}  // namespace quorel::test
