#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "linux/pane/RootedPropertyListFiles.h"
#include "model/Dictionary.h"
#include "model/PropertyList.h"

namespace quorel {
namespace {

class FilesTest : public testing::Test {
protected:
    FilesTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "XXXXXX").string();
        root = mkdtemp(pattern.data());
    }
    ~FilesTest() override { std::filesystem::remove_all(root); }

    void write(const std::string& name, const std::string& bytes) const { std::ofstream(root + name) << bytes; }
    Value read(const std::string& name) const {
        return RootedPropertyListFiles(root).dictionaryWithContentsOfFile(name);
    }

    std::string root;
};

TEST_F(FilesTest, ReadsADictionaryBelowTheRoot) {
    const Value value(Dictionary{{"a", -1}, {"b", std::string(300'000, 'x')}});
    std::filesystem::create_directories(root + "/Library/Preferences");
    write("/Library/Preferences/x.plist", *encodePropertyList(value));
    EXPECT_EQ(read("/Library/Preferences/x.plist"), value);
    EXPECT_EQ(RootedPropertyListFiles().dictionaryWithContentsOfFile(root + "/Library/Preferences/x.plist"), value);
}

TEST_F(FilesTest, EverythingElseIsAbsentAndNothingWaits) {
    const std::string good = *encodePropertyList(Dictionary{{"a", 1}});
    write("/good", good);
    write("/empty", "");
    write("/array", *encodePropertyList(Array{1}));
    write("/truncated", good.substr(0, good.size() / 2));
    std::filesystem::create_directory(root + "/directory");
    ASSERT_EQ(mkfifo((root + "/fifo").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", root + "/device");
    std::filesystem::create_symlink("loop", root + "/loop");
    write("/huge", "");
    std::filesystem::resize_file(root + "/huge", std::uintmax_t{1} << 40);
    write("/padded", good + std::string(kMaximumPropertyListBytes, '\n'));
    ASSERT_TRUE(read("/good").isPresent());
    for (const char* name : {"/missing", "/empty", "/array", "/truncated", "/directory", "/fifo", "/device", "/loop",
                             "/huge", "/padded", ""})
        EXPECT_TRUE(read(name).isAbsent()) << name;
}

}  // namespace
}  // namespace quorel
