#include "agent/tray/TrayContent.h"

#include <gtest/gtest.h>

#include "model/Dictionary.h"

namespace quorel {
namespace {

TEST(TrayContent, MeansTheNextOccurrenceThatIsStillAhead) {
    const struct {
        const char* what;
        std::vector<const char*> steps;  // their tokens are "0", "1", "2", ...
        bool maySkip;
        bool mayPostpone;
        std::string token;
        std::size_t lines;
    } cases[] = {
        {"nothing planned", {}, true, true, "", 1},
        {"the first", {"planned", "planned"}, true, true, "0", 2},
        {"skipped already", {"skipped", "waiting", "planned", "planned"}, true, true, "1", 3},
        {"begun already", {"running", "acting", "skipped", "warned"}, true, true, "3", 3},
        {"all skipped", {"skipped"}, true, true, "", 1},
        {"may not skip", {"postponed"}, false, true, "0", 1},
        {"may not postpone", {"make-up"}, true, false, "0", 1},
    };
    for (const auto& [what, steps, maySkip, mayPostpone, token, lines] : cases) {
        SCOPED_TRACE(what);
        Array upcoming;
        for (const char* step : steps)
            upcoming.emplace_back(Dictionary{{"Step", step}, {"Token", std::to_string(upcoming.size())}});
        const TrayContent content = trayContent(upcoming, maySkip, mayPostpone);
        EXPECT_EQ(content.token, token);
        ASSERT_EQ(content.menu.size(), lines + 6);
        EXPECT_EQ(content.menu[lines + 1].choice, mayPostpone && !token.empty() ? TrayContent::kPostpone : 0);
        EXPECT_EQ(content.menu[lines + 2].choice, maySkip && !token.empty() ? TrayContent::kSkip : 0);
    }
}

}  // namespace
}  // namespace quorel
