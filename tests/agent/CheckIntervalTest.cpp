#include "agent/updates/CheckInterval.h"

#include <gtest/gtest.h>

#include <optional>

#include "model/Dictionary.h"
#include "model/Preferences.h"

namespace quorel {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using Time = CheckInterval::Time;

constexpr Time kNow = sys_days(2026y / January / 31) + 9h;

Value preferences(Value on, Value frequency) {
    return Value(Dictionary{{preferences::kCheckUpdates, on}, {preferences::kCheckUpdatesFrequency, frequency}});
}

TEST(CheckInterval, FollowsPreferencesAndLastCheck) {
    const struct {
        const char* what;
        Value preferences;
        std::optional<Time> last;
        std::optional<Time> due;  // nothing: never
    } cases[] = {
        {"no file, no check yet", {}, {}, kNow},
        {"no file: daily", {}, kNow, kNow + 24h},
        {"empty file: off", Value(Dictionary()), {}, {}},
        {"off", preferences(0, 0), {}, {}},
        {"on, by text", preferences("1", "1"), kNow, kNow + days(7)},
        {"any number but zero is on", preferences(-3, 0), kNow, kNow + 24h},
        {"weekly", preferences(1, 1), kNow, kNow + days(7)},
        {"monthly, into a shorter month", preferences(1, 2), kNow, sys_days(2026y / February / 28) + 9h},
        {"monthly, over the year's end", preferences(1, 2), sys_days(2025y / December / 31) + 9h, kNow},
        {"unknown frequency: daily", preferences(1, 3), kNow, kNow + 24h},
        {"negative frequency: daily", preferences(1, -1), kNow, kNow + 24h},
        {"frequency of another kind: daily", preferences(true, Value(Array{})), kNow, kNow + 24h},
        {"overdue", preferences(1, 0), kNow - days(40), kNow},
        {"clock set back since", preferences(1, 2), kNow + days(400), kNow},
    };
    for (const auto& [what, values, last, due] : cases) {
        CheckInterval schedule(last);
        schedule.setPreferences(values);
        EXPECT_EQ(schedule.isDue(kNow), due && *due <= kNow) << what;
        if (!due) {
            EXPECT_FALSE(schedule.isDue(kNow + years(10))) << what;
        } else if (*due > kNow) {
            EXPECT_FALSE(schedule.isDue(*due - 1s)) << what;
            EXPECT_TRUE(schedule.isDue(*due)) << what;
            EXPECT_EQ(schedule.timeToNextLook(*due - 20min), 20min) << what;
        }
        EXPECT_EQ(schedule.timeToNextLook(kNow), due && *due <= kNow ? 0s : CheckInterval::kLookInterval) << what;
    }
}

TEST(CheckInterval, RepeatsAFailedCheckAfterAnHour) {
    CheckInterval schedule({});
    schedule.checkEnded(kNow, false);
    EXPECT_FALSE(schedule.isDue(kNow + 59min));
    EXPECT_EQ(schedule.timeToNextLook(kNow + 59min), 1min);
    EXPECT_TRUE(schedule.isDue(kNow + 1h));
    schedule.checkEnded(kNow + 1h, true);
    EXPECT_FALSE(schedule.isDue(kNow + 24h));
    EXPECT_TRUE(schedule.isDue(kNow + 25h));

    // A check by hand that fails does not bring the next one forward.
    schedule.checkEnded(kNow + 2h, false);
    EXPECT_FALSE(schedule.isDue(kNow + 24h));
    EXPECT_TRUE(schedule.isDue(kNow + 25h));
}

}  // namespace
}  // namespace quorel
