#include "tests/pane/PaneTest.h"

namespace quorel::test {
namespace {

using SheetsTest = PaneTest;

TEST_F(SheetsTest, TheAboutSheetShowsTheVersionAsItIs) {
    create();
    for (const auto& version : {std::optional<std::string>("1.0 (100)"), std::optional<std::string>("2 %@ %d"),
                                std::optional<std::string>(""), std::optional<std::string>()}) {
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
    EXPECT_EQ(host.application.ended.size(), 4u);
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

TEST_F(SheetsTest, SheetsNestAndCloseFromWithin) {
    create();
    const auto outer = std::make_shared<headless::Window>();
    std::vector<std::string> order;
    host.application.duringNextModal([&] {
        pane->about(nullptr);
        order.push_back("inner returned");
        EXPECT_FALSE(ui.aboutSheet->visible);
        EXPECT_TRUE(outer->visible);
        pane->closeSheet(nullptr);
    });
    host.application.duringNextModal([&] {
        order.push_back("inner open");
        pane->closeSheet(nullptr);
    });
    pane->openSheetOver(outer, nullptr);
    order.push_back("outer returned");
    EXPECT_EQ(order, (std::vector<std::string>{"inner open", "inner returned", "outer returned"}));
    ASSERT_EQ(host.application.begun.size(), 2u);
    EXPECT_EQ(host.application.begun[0].parent, nullptr);
    EXPECT_EQ(host.application.begun[1].parent, outer.get());
    EXPECT_EQ(host.application.ended, (std::vector<quorel::Window*>{ui.aboutSheet.get(), outer.get()}));
}

TEST_F(SheetsTest, ClosingWithoutASheetIsHarmless) {
    create();
    ui.closeButton->click();
    EXPECT_EQ(host.application.stops, 1);
    EXPECT_TRUE(host.application.ended.empty());
    host.application.duringNextModal([&] { ui.closeButton->click(); });
    pane->about(nullptr);
    EXPECT_EQ(host.application.stops, 2) << "an earlier stop must not end a later loop";
}

}  // namespace
}  // namespace quorel::test
