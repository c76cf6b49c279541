#include "agent/tray/MenuBarSetting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace quorel {
namespace {

TEST(MenuBarSetting, FollowsTheFileAndItsFolderAsTheyComeAndGo) {
    std::string root = testing::TempDir() + "menu-bar-XXXXXX";
    ASSERT_TRUE(mkdtemp(root.data()));
    const std::filesystem::path folder = root + "/Library/Preferences";
    const struct {
        const char* value;  // nothing: no file
        bool on;
    } cases[] = {{"<integer>0</integer>", false}, {"<integer>1</integer>", true},
                 {"<integer>2</integer>", false}, {"<true/>", true},
                 {"<string>0</string>", false},   {"<string>1x</string>", true},
                 {"<real>0.9</real>", false},     {nullptr, true},
                 {"<integer>-1</integer>", false}};

    EventLoop loop;
    bool shown = false;
    const MenuBarSetting setting(loop, root, [&](bool on) { shown = on; });
    EXPECT_TRUE(shown);
    for (const auto& [value, on] : cases) {
        if (value) {
            std::filesystem::create_directories(folder);
            std::ofstream(folder / "new") << "<plist><dict><key>Show In Menu Bar</key>" << value << "</dict></plist>";
            std::filesystem::rename(folder / "new", folder / "com.quorel.plist");
        } else {
            std::filesystem::remove_all(root + "/Library");
        }
        for (int tries = 0; shown != on && tries < 600; ++tries) sd_event_run(loop.get(), 100000);
        EXPECT_EQ(shown, on) << (value ? value : "no file");
    }
    std::filesystem::remove_all(root);
}

}  // namespace
}  // namespace quorel
