#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "kit/MOLLog.h"
#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "pane/VXPrefPaneController.h"
#include "tests/support/FakeKit.h"
#include "tests/support/FakeModule.h"
#include "tests/support/HeadlessNib.h"

namespace quorel::test {

using namespace std::chrono_literals;

/// A pane on a host in memory. Texts from its table are shown in brackets, so that one which was not looked up, or
/// not in the default table with an empty default, differs.
class PaneTest : public testing::Test {
protected:
    struct Localized : headless::Bundle {
        using Bundle::Bundle;
        std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                    std::string_view table) const override {
            if (onLookup) onLookup(key);
            return std::string(value) + std::string(table) + "[" + std::string(key) + "]";
        }
        std::function<void(std::string_view key)> onLookup;
    };

    PaneTest() {
        bundle->info = Value(Dictionary{{"CFBundleIdentifier", "com.quorel.pane"}});
        for (const auto type : {schedule_keys::kSleepType, schedule_keys::kWakeUpType}) {
            installModule(host.bundles, makeModule(type, type), bundle->builtInPlugInsPath(), std::string(type));
        }
        logged().clear();
        setMOLLogSink([](std::string_view line) { logged().emplace_back(line); });
    }
    ~PaneTest() override { setMOLLogSink(nullptr); }

    void create() {
        pane = VXPrefPaneController::initWithBundle(bundle, configuratorUi, host.platform);
        ASSERT_TRUE(pane);
        ui.load(*pane);
    }
    /// Selected and shown, with its first results on screen.
    void open() {
        create();
        pane->didSelect();
        host.dispatch.run();
    }
    void unlockBeforehand() { host.standardUserDefaults.values["NSDocumentBooo"] = Value("<rtwzKa38Pmxq 42>"); }
    void store(Value preferencesDictionary) {
        host.files.files[std::string(preferences::kFile)] = std::move(preferencesDictionary);
    }
    static Dictionary storedDefaults() {
        return {{"Check Updates", 1},
                {"Check Updates Frequency", 1},
                {"Show In Menu Bar", 1},
                {"Schedule Array", Array{schedule("a"), schedule("b")}}};
    }
    static Value schedule(std::string_view tag, std::string_view type = schedule_keys::kSleepType) {
        return Value(Dictionary{{"Tag", tag}, {schedule_keys::kActionType, type}, {schedule_keys::kIsEnabled, 1}});
    }
    std::string tags() const {
        std::string all;
        for (const Value& entry : pane->configurator()->scheduleArray()) all += entry["Tag"].text();
        return all;
    }
    /// Apply and Revert, which only ever change together.
    bool canApply() const {
        EXPECT_EQ(ui.applyButton->isEnabled(), ui.revertButton->isEnabled());
        return ui.applyButton->isEnabled();
    }
    void setCanApply(bool can) {
        ui.applyButton->setEnabled(can);
        ui.revertButton->setEnabled(can);
    }
    /// "+" for a running program, "-" for one that is not, daemon first.
    std::string lights() const {
        const auto light = [](const auto& text, const auto& image, const char* on, const char* off) {
            if (text.stringValue() == on && image.imageName() == "Available") return "+";
            return text.stringValue() == off && image.imageName() == "Unavailable" ? "-" : "?";
        };
        return std::string(light(*ui.statusDaemon, *ui.statusDaemonImageView, "[Demon actif]", "[Demon non lance]")) +
               light(*ui.statusUserAgent, *ui.statusUserAgentImageView, "[User Agent actif]", "[User Agent non lance]");
    }
    static std::vector<std::string>& logged() {
        static std::vector<std::string> lines;
        return lines;
    }

    headless::HeadlessPlatform host;
    std::shared_ptr<Localized> bundle = std::make_shared<Localized>("/pane");
    FakeCommunicationCenter center;
    FakeUpdateChecker checker;
    ConfiguratorInterface configuratorUi;
    PaneInterface ui;
    std::shared_ptr<VXPrefPaneController> pane;
};

}  // namespace quorel::test
