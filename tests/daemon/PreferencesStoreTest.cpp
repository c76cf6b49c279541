#include "daemon/saving/PreferencesStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quorel {
namespace {

namespace fs = std::filesystem;

class PreferencesStoreTest : public testing::Test {
protected:
    PreferencesStoreTest() {
        std::string pattern = (fs::temp_directory_path() / "XXXXXX").string();
        root = mkdtemp(pattern.data());
        folder = root / "Library/Preferences";
        file = folder / "com.quorel.plist";
        temporary = folder / ".com.quorel.plist.new";
    }
    ~PreferencesStoreTest() override { fs::remove_all(root); }

    std::string write(const std::string& bytes) const { return PreferencesStore(root).write(bytes); }
    static std::string contents(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
    }

    fs::path root, folder, file, temporary;
};

TEST_F(PreferencesStoreTest, MakesTheFolderAndAFileThatAllCanRead) {
    const mode_t before = umask(077);
    EXPECT_EQ(write("first"), "");
    umask(before);
    EXPECT_EQ(contents(file), "first");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
    const std::string large(5'000'000, 'x');
    EXPECT_EQ(write(large), "");
    EXPECT_EQ(contents(file), large);
    EXPECT_EQ(write("short"), "");
    EXPECT_EQ(contents(file), "short");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(PreferencesStoreTest, OpenReadersKeepTheOldFileWhole) {
    write("old");
    std::ifstream reader(file);
    write("new");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "old");
}

TEST_F(PreferencesStoreTest, LinksAreReplacedAndNeverFollowed) {
    fs::create_directories(folder);
    for (const auto& place : {file, temporary}) {
        const fs::path victim = root / "victim";
        std::ofstream(victim) << "untouched";
        fs::create_symlink(victim, place);
        EXPECT_EQ(write("new"), "") << place;
        EXPECT_EQ(contents(victim), "untouched") << place;
        EXPECT_FALSE(fs::is_symlink(file)) << place;
        EXPECT_EQ(contents(file), "new") << place;
        EXPECT_EQ(filesInFolder(), 1U) << place;
        fs::remove(file);
    }
}

TEST_F(PreferencesStoreTest, FailuresLeaveEverythingAsItWas) {
    write("old");
    fs::create_directories(temporary / "something");
    EXPECT_NE(write("new"), "");
    EXPECT_EQ(contents(file), "old");
    fs::remove_all(temporary);

    fs::rename(file, root / "aside");
    fs::create_directories(file / "something");  // cannot be replaced by a file
    EXPECT_NE(write("new"), "");
    EXPECT_FALSE(fs::exists(temporary));
    EXPECT_TRUE(fs::exists(file / "something"));

    fs::remove_all(folder);
    std::ofstream(folder) << "no folder";
    EXPECT_NE(write("new"), "");
    EXPECT_EQ(contents(folder), "no folder");
}

TEST_F(PreferencesStoreTest, RemovesWhatAnInterruptedWriteLeft) {
    write("old");
    std::ofstream(temporary) << "half a fi";
    PreferencesStore(root).removeLeftovers();
    EXPECT_FALSE(fs::exists(temporary));
    EXPECT_EQ(contents(file), "old");
    fs::remove_all(folder);
    PreferencesStore(root).removeLeftovers();
    EXPECT_FALSE(fs::exists(folder));
}

}  // namespace
}  // namespace quorel
