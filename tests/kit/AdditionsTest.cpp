#include "kit/Additions.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorel {
namespace {

TEST(AdditionsTest, DateFromHourMinutesCarriesOver) {
    const CalendarDate day{2024, 2, 28, 13, 14, 15};
    struct {
        int hour, minutes;
        CalendarDate date;
    } const cases[] = {
        {0, 0, {2024, 2, 28, 0, 0, 0}},        {23, 59, {2024, 2, 28, 23, 59, 0}}, {24, 0, {2024, 2, 29, 0, 0, 0}},
        {47, 60, {2024, 3, 1, 0, 0, 0}},       {0, -1, {2024, 2, 27, 23, 59, 0}},  {-24, -1, {2024, 2, 26, 23, 59, 0}},
        {24 * 366, 0, {2025, 2, 28, 0, 0, 0}}, {1, -60, {2024, 2, 28, 0, 0, 0}},
    };
    for (const auto& [hour, minutes, date] : cases) {
        EXPECT_EQ(dateFromHourMinsFromDate(hour, minutes, day), date) << hour << ":" << minutes;
    }
    for (const int extreme : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        const CalendarDate date = dateFromHourMinsFromDate(extreme, extreme, day);
        EXPECT_TRUE(date.hour >= 0 && date.hour < 24 && date.minute >= 0 && date.minute < 60);
        EXPECT_TRUE(date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31);
    }
}

}  // namespace
}  // namespace quorel
