#include "agent/tray/TrayContent.h"

#include <gtest/gtest.h>

#include "model/Dictionary.h"

namespace quorel {
namespace {

TEST(TrayContent, SaysUnderEachOccurrenceWhatCanBeDoneWithIt) {
    const struct {
        std::vector<const char*> steps;  // their tokens are "0", "1", "2", ...
        bool maySkip;
        bool mayPostpone;
        std::string lines;  // "o" is an occurrence, with what is to be done with it and its token
    } cases[] = {
        {{}, true, true, "o"},
        {{"skipped"}, true, true, "o"},
        {{"skipped", "waiting", "planned", "planned"}, true, true, "oop1s1op2s2"},
        {{"running", "acting", "postponed"}, false, true, "ooop2"},
        {{"make-up", "warned"}, true, false, "os0os1"},
    };
    for (const auto& [steps, maySkip, mayPostpone, lines] : cases) {
        Array upcoming;
        for (const char* step : steps)
            upcoming.emplace_back(Dictionary{{"Step", step}, {"Token", std::to_string(upcoming.size())}});
        const TrayContent content = trayContent(upcoming, maySkip, mayPostpone, true);
        std::string found;
        for (const MenuItem& item : content.menu) {
            if (item.text.empty()) break;
            if (item.choice == 0) {
                found += 'o';
                continue;
            }
            const TrayContent::Choice& choice = content.choices.at(static_cast<std::size_t>(item.choice) - 1);
            found += (choice.what == TrayContent::Choice::kSkip ? 's' : 'p') + choice.token;
        }
        EXPECT_EQ(found, lines);
    }
    for (const bool hasSettings : {false, true})
        EXPECT_EQ(trayContentWithoutDaemon(hasSettings).choices.back().what == TrayContent::Choice::kOpenSettings,
                  hasSettings);
}

}  // namespace
}  // namespace quorel
