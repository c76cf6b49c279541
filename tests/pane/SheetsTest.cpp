#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

using SheetsTest = PaneTest;

TEST_F(SheetsTest, TheAboutSheetShowsTheVersionAsItIs) {
    create();
    ui.closeButton->click();  // without a sheet: sent all the same
    EXPECT_EQ(host.application.stops, 1);
    for (const auto& version : {std::optional<std::string>("2 %@ %d"), std::optional<std::string>()}) {
        checker.fullVersion = version;
        bool shown = false;
        host.application.duringNextModal([&] {
            shown = ui.aboutSheet->visible;
            EXPECT_EQ(ui.theVersion->stringValue(), "version " + version.value_or("(null)"));
            ui.closeButton->click();
        });
        ui.aboutButton->click();
        EXPECT_TRUE(shown);
        EXPECT_FALSE(ui.aboutSheet->visible);
        EXPECT_EQ(ui.aboutSheet->orderOutSender, pane.get());
    }
    EXPECT_EQ(host.application.ended.size(), 2u);
    VXUpdateChecker::setSharedInstance(nullptr);
    host.application.duringNextModal([&] { ui.closeButton->click(); });
    static_cast<VXPrefPaneControllerProtocol&>(*pane).about();
    EXPECT_EQ(ui.theVersion->stringValue(), "version (null)");
}

TEST_F(SheetsTest, TheWindowUnderTheSheet) {
    create();
    auto window = std::make_shared<headless::Window>();
    const auto parentOf = [&] {
        host.application.duringNextModal([&] { ui.closeButton->click(); });
        pane->about(nullptr);
        return host.application.begun.back().parent;
    };
    host.application.main = std::make_shared<headless::Window>();  // never asked for
    EXPECT_EQ(parentOf(), nullptr);
    pane->setVxPrefPaneWindow(window);
    EXPECT_EQ(pane->vxPrefPaneWindow(), window);
    EXPECT_EQ(parentOf(), window.get());
    window = nullptr;
    EXPECT_EQ(pane->vxPrefPaneWindow(), nullptr) << "the window belongs to its host";
    EXPECT_EQ(parentOf(), nullptr);

    headless::Window modal;
    quorel::Window* parent = nullptr;
    host.application.duringNextModal([&] {
        parent = parentOf();
        host.application.stopModal();
    });
    host.application.runModalForWindow(modal);
    EXPECT_EQ(parent, &modal);
}

}  // namespace
}  // namespace quorel::test
