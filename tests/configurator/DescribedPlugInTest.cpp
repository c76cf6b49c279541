#include "configurator/VXDescribedPlugIn.h"

#include "model/ActionParameters.h"
#include "model/PropertyListText.h"
#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

constexpr const char* kWords = R"( QuorelActionFormat = 1; VXEditClass = VXDescribedPlugIn; QuorelActionIsBase = YES;
    QuorelActionType = "org.x.Nap"; QuorelActionNames = { en = "Nap"; fr = "Sieste"; };
    QuorelActionSays = { en = "Naps"; fr = "Fait la sieste"; }; QuorelActionWakesUp = always;
    QuorelActionProgram = nap; QuorelActionRunsAs = user; )";
constexpr const char* kMinutes =
    "QuorelActionOptions = ( { Key = Minutes; Kind = number; Label = { en = For; }; Default = 5; Most = 9; } );";

/// A form in memory: what it is told to show, with what somebody typed into it.
struct Form : OptionsForm {
    explicit Form(std::string theFault) : fault(std::move(theFault)) {}
    std::shared_ptr<View> view() override { return box; }
    void show(const Value& parameters) override { values = parameters; }
    Value shown() override { return values; }

    std::string fault;
    std::shared_ptr<headless::View> box = std::make_shared<headless::View>();
    Value values;
};

struct Forms : OptionsForms {
    std::unique_ptr<OptionsForm> formOf(const ActionDescription& action) override {
        auto form = std::make_unique<Form>(action.isSound() ? "" : action.faults[0].key);
        last = form.get();
        return form;
    }
    std::string language() const override { return french ? "fr" : "en"; }

    Form* last = nullptr;
    bool french = false;
};

class DescribedPlugInTest : public ConfiguratorTest {
protected:
    /// A folder without code, in the language of the description.
    void add(const std::string& name, const std::string& words) {
        const std::string path = "/pane/PlugIns/" + name + ".vxplugin";
        auto folder = std::make_shared<headless::Bundle>(path);
        folder->info = decodePropertyListText("{" + words + "}");
        ASSERT_TRUE(folder->info.isDictionary());
        folder->loadable = false;
        folder->classes["VXDescribedPlugIn"] = std::make_shared<VXDescribedPlugInClass>(host.bundles, forms);
        host.bundles.byPath[path] = folder;
        host.bundles.directories["/pane/PlugIns"].push_back(path);
    }
    VXPrefPanePlugInProtocol& nap() { return *configurator->plugins()->at("org.x.Nap"); }

    Forms forms;
};

TEST_F(DescribedPlugInTest, AnswersOutOfItsDescription) {
    add("Nap", std::string(kWords) + kMinutes);
    start();
    EXPECT_TRUE(nap().isBaseModule());
    EXPECT_EQ(nap().pluginName(), "Nap");
    forms.french = true;
    EXPECT_EQ(nap().pluginName(), "Sieste");
    EXPECT_EQ(nap().actionString(), "Fait la sieste");
    EXPECT_EQ(nap().setupView(), forms.last->box);

    const Value standards =
        Dictionary{{"Minutes", 5}, {parameters::kNeedsWakeUp, true}, {parameters::kNeedsStartup, false}};
    EXPECT_EQ(nap().defaultParameters(), standards);
    EXPECT_EQ(nap().parameters(), standards);
    nap().setNeedsWakeUp(false);
    nap().setNeedsStartup(true);
    EXPECT_EQ(nap().parameters(), standards.with(parameters::kNeedsStartup, true));
    EXPECT_TRUE(nap().needsWakeUp() && nap().needsStartup());
    EXPECT_TRUE(nap().needsWakeUpByDefault() && !nap().needsStartupByDefault());

    nap().setParameters(Dictionary{{"Minutes", Array{}}, {"Remark", "kept"}});
    nap().fillSetupInterfaceFromParameters();
    EXPECT_EQ(forms.last->values["Minutes"], Value(5));
    forms.last->values = Dictionary{{"Minutes", 99}, {"Other", 1}};
    nap().fillParametersFromSetupInterface();
    EXPECT_EQ(nap().parameters(), standards.with("Minutes", 9).with("Remark", "kept"));
    nap().setParameters(Value());
    EXPECT_EQ(nap().parameters(), standards);
}

TEST_F(DescribedPlugInTest, WhatStandsInAFileIsWrittenBackOnlyByASave) {
    add("Nap", std::string(kWords) + kMinutes);
    start();
    const Value stored = tagged("a", "org.x.Nap").with("Action Parameters", Dictionary{{"Minutes", "12"}, {"X", 1}});
    configurator->setScheduleArray(Array{stored, stored});
    configurator->setLocked(false);
    EXPECT_EQ(ui.table->valueAt(0, "Infos")["Action"].text(), "Naps");
    EXPECT_EQ(entry(0), stored);
    host.application.duringNextModal([this] { ui.saveButton->act(); });
    ASSERT_TRUE(ui.table->doubleClickRow(0));
    EXPECT_EQ(entry(0)["Action Parameters"],
              Value(Dictionary{
                  {"Minutes", 9}, {"X", 1}, {parameters::kNeedsWakeUp, true}, {parameters::kNeedsStartup, false}}));
    EXPECT_EQ(entry(1), stored);
}

TEST_F(DescribedPlugInTest, ABrokenFolderIsShownUnlessASoundOneIsTheSame) {
    const std::string broken = std::string(kWords) + "QuorelActionOptions = ( { Key = Minutes; Kind = count; } );";
    add("A", broken);
    start();
    const Value stored = Dictionary{{"Minutes", Array{1}}};
    nap().setParameters(stored);
    nap().fillParametersFromSetupInterface();
    EXPECT_EQ(nap().parameters()["Minutes"], stored["Minutes"]);
    EXPECT_EQ(forms.last->fault, "QuorelActionOptions 1 Label");
    EXPECT_EQ(nap().setupView(), forms.last->box);

    add("B", kWords);
    forms.last = nullptr;
    start();
    EXPECT_FALSE(forms.last) << "the sound one, which has no options";
    EXPECT_FALSE(nap().setupView());
}

TEST_F(DescribedPlugInTest, WithoutTypeOrNameThereIsNothing) {
    add("A", "VXEditClass = VXDescribedPlugIn; QuorelActionType = a;");
    add("B", "VXEditClass = VXDescribedPlugIn; QuorelActionNames = { en = B; };");
    start();
    EXPECT_TRUE(configurator->plugins()->empty());
    VXDescribedPlugInClass unused(host.bundles, forms);
    EXPECT_FALSE(unused.initializeClass(nullptr));
    EXPECT_FALSE(unused.create());
}

}  // namespace
}  // namespace quorel::test
