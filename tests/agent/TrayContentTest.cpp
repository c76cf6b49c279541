#include "agent/tray/TrayContent.h"

#include <gtest/gtest.h>

#include "model/Dictionary.h"

namespace quorel {
namespace {

TEST(TrayContent, SaysUnderEachOccurrenceWhatCanBeDoneWithIt) {
    using Choice = TrayContent::Choice;
    constexpr Instant kNow = 1'000'000;
    const auto pause = [](Instant until, bool isBrief) {
        return Dictionary{{"Token", std::to_string(until)}, {"From", until - 99}, {"Until", until}, {"Brief", isBrief}};
    };
    const struct {
        std::vector<const char*> steps;  // their tokens are "0", "1", "2", ...
        Array pauses;
        bool maySkip, mayPostpone, mayPause;
        std::string lines;  // "o" is to be read, what can be chosen a letter, with what it is about
    } cases[] = {
        {{}, {}, true, true, false, "o"},
        {{"skipped"}, {}, true, true, true, "o undo0 | pause"},
        {{"skipped", "waiting", "planned", "planned"},
         {},
         true,
         true,
         false,
         "o undo0 o 15min1 1h1 skip1 o 15min2 1h2 skip2"},
        {{"running", "acting", "postponed"}, {}, false, true, false, "o o o 15min2 1h2"},
        {{"make-up", "warned"}, {}, true, false, false, "o skip0 o skip1"},
        {{"kept awake"}, {}, true, true, false, "o skip0"},
        {{"planned"},
         {pause(kNow + 10, false), pause(kNow + 60, true)},
         true,
         false,
         true,
         "o o skip0 | resume1000060"},
        {{}, {pause(kNow + 60, true), pause(kNow + 70, false)}, true, true, true, "o o"},
        {{}, {pause(kNow + 100, true)}, true, true, true, "o | pause"},
    };
    for (const auto& row : cases) {
        Array upcoming;
        for (const std::string step : row.steps) {
            Dictionary one{{"Step", step}, {"Token", std::to_string(upcoming.size())}};
            if (step == "kept awake") one = {{"Step", "running"}, {"Token", "0"}, {"Until", kNow}};
            upcoming.emplace_back(one);
        }
        const TrayContent content =
            trayContent({upcoming, row.pauses, row.maySkip, row.mayPostpone, row.mayPause}, kNow, true);
        std::string found;
        for (const MenuItem& item : content.menu) {
            const Choice choice =
                item.choice == 0 ? Choice{Choice::kCheckUpdates} : content.choices.at(std::size_t(item.choice) - 1);
            if (item.choice != 0 && choice.what == Choice::kCheckUpdates) break;
            found += found.empty() ? "" : " ";
            if (item.choice == 0) found += item.text.empty() ? "|" : "o";
            if (choice.what == Choice::kPostpone) found += (choice.length == kHour ? "1h" : "15min") + choice.token;
            if (choice.what == Choice::kSkip) found += "skip" + choice.token;
            if (choice.what == Choice::kUnskip) found += "undo" + choice.token;
            if (choice.what == Choice::kPause) found += "pause";
            if (choice.what == Choice::kResume) found += "resume" + choice.token;
        }
        EXPECT_EQ(found, row.lines + " |");
    }
    for (const bool hasSettings : {false, true})
        EXPECT_EQ(trayContentWithoutDaemon(hasSettings).choices.back().what == TrayContent::Choice::kOpenSettings,
                  hasSettings);
}

}  // namespace
}  // namespace quorel
