#include "agent/tray/TrayContent.h"

#include <gtest/gtest.h>

#include "model/Dictionary.h"

namespace quorel {
namespace {

TEST(TrayContent, MeansTheNextOccurrenceThatIsStillAhead) {
    const struct {
        std::vector<const char*> steps;  // their tokens are "0", "1", "2", ...
        bool maySkip;
        bool mayPostpone;
        std::string token;
        std::size_t lines;
    } cases[] = {
        {{}, true, true, "", 1},
        {{"skipped"}, true, true, "", 1},
        {{"skipped", "waiting", "planned", "planned"}, true, true, "1", 3},
        {{"running", "acting", "skipped", "warned"}, true, true, "3", 3},
        {{"postponed"}, false, true, "0", 1},
        {{"make-up", "planned"}, true, false, "0", 2},
    };
    for (const auto& [steps, maySkip, mayPostpone, token, lines] : cases) {
        Array upcoming;
        for (const char* step : steps)
            upcoming.emplace_back(Dictionary{{"Step", step}, {"Token", std::to_string(upcoming.size())}});
        const TrayContent content = trayContent(upcoming, maySkip, mayPostpone);
        SCOPED_TRACE(testing::PrintToString(steps));
        EXPECT_EQ(content.token, token);
        ASSERT_EQ(content.menu.size(), lines + 6);
        EXPECT_EQ(content.menu[lines + 1].choice != 0, mayPostpone && !token.empty());
        EXPECT_EQ(content.menu[lines + 2].choice != 0, maySkip && !token.empty());
    }
}

}  // namespace
}  // namespace quorel
