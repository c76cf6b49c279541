#include "linux/units/ModuleRegistry.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "ProductVersion.h"
#include "kit/MOLLog.h"

namespace quorel {
namespace {

namespace fs = std::filesystem;

/// A module below a root of its own. The program trusts its own user there.
class ModuleRegistryTest : public testing::Test {
protected:
    ModuleRegistryTest() {
        umask(022);
        std::string name = testing::TempDir() + "modulesXXXXXX";
        _root = mkdtemp(name.data());
        _plugIns = _root + product::kPlugInsFolder;
        addModule("M", kWords);
    }
    ~ModuleRegistryTest() override { fs::remove_all(_root); }

    static constexpr const char* kWords = R"({ QuorelActionType = org.x.M; QuorelActionProgram = run;
        QuorelActionRunsAs = system; QuorelActionNames = { en = "M\U202e"; fr = "É"; }; })";

    std::string resources(const std::string& name) const { return _plugIns + "/" + name + ".vxplugin/Resources"; }
    std::string info(const std::string& name) const { return resources(name) + "/Info-gnustep.plist"; }
    void write(const std::string& path, const std::string& text) const { std::ofstream(path) << text; }
    void addModule(const std::string& name, const std::string& words) {
        fs::create_directories(resources(name));
        write(info(name), words);
        write(resources(name) + "/run", "#!/bin/sh\n");
        fs::permissions(resources(name) + "/run", fs::perms(0755));
    }
    /// Its words with one replaced, or one more.
    static std::string words(const std::string& key, const std::string& value) {
        return std::string(kWords, std::string_view(kWords).size() - 1) + key + " = " + value + "; }";
    }
    /// Of the first module; "none" where there is no module.
    std::string fault() const {
        ModuleRegistry registry(_root);
        registry.scan();
        return registry.modules().empty() ? "none" : registry.modules().front().value()["Fault"].text();
    }

    std::string _root, _plugIns;
};

TEST_F(ModuleRegistryTest, ReadsWhatAModuleSays) {
    write(info("M"), words("QuorelActionNeeds",
                           "(network, root); QuorelActionWrites = (\"/var/a b\"); "
                           "QuorelActionTimeLimit = 999999; QuorelActionMakeUp = \"60\""));
    ModuleRegistry registry(_root);
    registry.scan();
    const ActionDescription* found = registry.find("org.x.M");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->value(), (Dictionary{{"Bundle", "M.vxplugin"},
                                          {"Action", "org.x.M"},
                                          {"Names", Dictionary{{"en", "M\uFFFD"}, {"fr", "É"}}},
                                          {"Program", "run"},
                                          {"RunsAs", "system"},
                                          {"TimeLimit", 86400},
                                          {"MakeUp", 60},
                                          {"Needs", Array{"network", "root"}},
                                          {"Writes", Array{"/var/a b"}}}));
    EXPECT_EQ(registry.programPath(*found), resources("M") + "/run");
    EXPECT_FALSE(registry.find(""));
}

TEST_F(ModuleRegistryTest, WhatItDoesNotMean) {
    const struct {
        std::string words, fault;
    } cases[] = {
        {kWords, ""},
        {R"(<plist><dict><key>QuorelActionType</key><string>com.quorel.plugin.Sleep</string></dict></plist>)", ""},
        {"{ VXEditClass = X; }", "no-words"},
        {"{ QuorelActionType = org.x.M; }", "no-program"},
        {words("QuorelActionRunsAs", "nobody"), "malformed"},
        {words("QuorelActionProgram", "other"), "bad-program"},
        {words("QuorelActionProgram", "\"Info-gnustep.plist\""), "bad-program"},
        {"\x7f"
         "ELF\0garbage",
         "unreadable"},
        {"(a)", "unreadable"},
        {kWords + std::string(64 * 1024, ' '), "unreadable"},
    };
    for (const auto& [words, fault] : cases) {
        write(info("M"), words);
        EXPECT_EQ(this->fault(), fault) << words.substr(0, 200);
    }
}

TEST_F(ModuleRegistryTest, WhatOthersCouldHaveChanged) {
    const std::string bundle = _plugIns + "/M.vxplugin";
    const auto move = [this](const std::string& path) {  // a link where it was
        fs::rename(path, _root + "/moved");
        fs::create_symlink(_root + "/moved", path);
    };
    const auto letWrite = [](const std::string& path) { fs::permissions(path, fs::perms(0775)); };
    const auto give = [](const std::string& path) { ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0); };
    const std::string program = resources("M") + "/run";
    const std::string above = fs::path(_plugIns).parent_path();
    const struct {
        std::function<void(const std::string&)> change;
        std::string path, fault;
    } cases[] = {
        {move, above, "none"},
        {move, _plugIns, "none"},
        {move, bundle, "untrusted"},
        {move, resources("M"), "untrusted"},
        {move, info("M"), "untrusted"},
        {move, program, "bad-program"},
        {letWrite, above, "none"},
        {letWrite, bundle, "untrusted"},
        {letWrite, info("M"), "untrusted"},
        {letWrite, program, "bad-program"},
        {give, above, "none"},
        {give, resources("M"), "untrusted"},
        {give, info("M"), "untrusted"},
        {give, program, "bad-program"},
    };
    for (const auto& [change, path, fault] : cases) {
        if (geteuid() != 0 && fs::path(path) == above) continue;
        change(path);
        EXPECT_EQ(this->fault(), fault) << path;
        fs::remove_all(_root + "/moved");
        fs::remove_all(_root);
        addModule("M", kWords);
        EXPECT_EQ(this->fault(), "");
    }
}

TEST_F(ModuleRegistryTest, TheFirstSoundOneActsAndTheRestIsSaidOnce) {
    static std::string said;
    said.clear();
    setMOLLogSink([](std::string_view line) { said += std::string(line) + "\n"; });
    addModule("N", kWords);
    addModule("L", words("QuorelActionRunsAs", "nobody"));  // takes nothing from a good one
    addModule(".hidden", kWords);
    ModuleRegistry registry(_root);
    for (int i = 0; i < 2; ++i) registry.scan();
    EXPECT_EQ(registry.modules().size(), 3U);
    EXPECT_EQ(registry.find("org.x.M")->bundle, "M.vxplugin");
    EXPECT_EQ(said,
              "The module L.vxplugin cannot act: malformed (QuorelActionRunsAs).\n"
              "The module N.vxplugin cannot act: taken.\n");
}

}  // namespace
}  // namespace quorel
