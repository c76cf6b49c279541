#include "tests/configurator/ConfiguratorTest.h"

namespace quorel::test {
namespace {

using FirstResizeTest = ConfiguratorTest;

TEST_F(FirstResizeTest, OnlyTheFirstSheetOfTheProcessKeepsItsFullHeight) {
    host.application.main = std::make_shared<headless::Window>();
    host.application.main->setFrame({100, 50, 800, 700});
    startWithModules();
    configurator->resizeEditSheetUsingHeight(120);  // the sheet's smallest size is 500 x 300
    EXPECT_EQ(ui.editSheet->frame(), (Rect{200, 750 - 22 - 420, 500, 420}));
    EXPECT_TRUE(ui.editSheet->animated);
    configurator->resizeEditSheetUsingHeight(120);
    EXPECT_EQ(ui.editSheet->frame(), (Rect{200, 750 - 22 - 398, 500, 398}));

    ConfiguratorInterface otherUi;
    const auto other = VXConfigurator::init(bundle, otherUi, host.platform);
    other->resizeEditSheetUsingHeight(0);
    EXPECT_EQ(otherUi.editSheet->frame(), (Rect{200, 750 - 22 - 278, 500, 278}));
    host.application.main = nullptr;
    other->resizeEditSheetUsingHeight(0);
    EXPECT_EQ(otherUi.editSheet->frame(), (Rect{200, -22 - 278, 500, 278}));
}

}  // namespace
}  // namespace quorel::test
