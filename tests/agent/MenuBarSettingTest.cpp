#include "agent/MenuBarSetting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>

namespace quorel {
namespace {

TEST(MenuBarSetting, FollowsTheFileAndItsFolderAsTheyComeAndGo) {
    std::string root = testing::TempDir() + "menu-bar-XXXXXX";
    ASSERT_TRUE(mkdtemp(root.data()));
    const std::filesystem::path folder = root + "/Library/Preferences";
    EventLoop loop;
    std::optional<bool> shown;
    const auto store = [&](const std::string& value) {
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "new") << "<plist><dict><key>Show In Menu Bar</key>" << value << "</dict></plist>";
        std::filesystem::rename(folder / "new", folder / "com.quorel.plist");
    };
    MenuBarSetting setting(loop, root, [&](bool on) { shown = on; });
    EXPECT_EQ(shown, true) << "without a file";

    const auto expect = [&](bool on, const char* what) {
        for (int tries = 0; shown != on && tries < 600; ++tries) sd_event_run(loop.get(), 100000);
        EXPECT_EQ(shown, on) << what;
    };
    const struct {
        const char* value;
        bool on;
    } cases[] = {{"<integer>0</integer>", false}, {"<integer>1</integer>", true},
                 {"<integer>2</integer>", false}, {"<true/>", true},
                 {"<string>0</string>", false},   {"<string>1x</string>", true},
                 {"<real>0.9</real>", false},     {"<integer>1</integer>", true},
                 {"<integer>-1</integer>", false}};
    for (const auto& [value, on] : cases) {
        store(value);
        expect(on, value);
    }
    std::filesystem::remove_all(root + "/Library");
    expect(true, "the folder is gone");
    store("<integer>0</integer>");
    expect(false, "another folder of that name");
    std::filesystem::remove(folder / "com.quorel.plist");
    expect(true, "the file is gone");
    std::filesystem::remove_all(root);
}

}  // namespace
}  // namespace quorel
