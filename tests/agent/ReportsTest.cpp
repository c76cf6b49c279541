#include "agent/updates/Reports.h"

#include <gtest/gtest.h>

#include <string>

namespace quorel {
namespace {

class Checker : public VXUpdateChecker {
public:
    std::optional<std::string> versionString() const override { return "1.0"; }
    std::optional<std::string> fullVersionString() const override { return "1.0"; }
    bool updateLatestVersionDictionary() override { return true; }
    std::optional<std::string> latestVersion() const override { return latest; }
    std::string latestVersionURL() const override { return "https://example.org/"; }

    std::optional<std::string> latest;
};

TEST(Reports, TellEachVersionOnceUnlessAskedByHand) {
    constexpr bool kFailed = false;
    constexpr bool kByHand = true;
    const struct {
        std::optional<std::string> latest;
        bool succeeded;
        bool byHand;
        std::string title;  // empty: nothing is said
    } inOrder[] = {
        {{}, kFailed, false, ""},
        {{}, true, false, ""},
        {{}, kFailed, kByHand, "Update check failed"},
        {{}, true, kByHand, "Up to date"},
        {"2.5", true, false, "New version available"},
        {"2.5", true, false, ""},
        {"2.5", true, kByHand, "New version available"},
        {"2.10", true, kByHand, "New version available"},
        {"2.10", true, false, ""},
        {"2.5", true, kByHand, "New version available"},
        {"2.10.0", true, false, ""},
        {"2.10", kFailed, kByHand, "Update check failed"},
        {"3", kFailed, false, ""},
        {"3", true, false, "New version available"},
    };
    Reports reports;
    Checker checker;
    int step = 0;
    for (const auto& [latest, succeeded, byHand, title] : inOrder) {
        checker.latest = latest;
        const auto message = reports.report(checker, succeeded, byHand);
        EXPECT_EQ(message ? message->title : "", title) << step;
        if (message) EXPECT_EQ(message->buttons.empty(), title != "New version available") << step;
        ++step;
    }
}

}  // namespace
}  // namespace quorel
