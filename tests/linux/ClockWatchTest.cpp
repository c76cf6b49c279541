#include "linux/time/ClockWatch.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace quorel {
namespace {

constexpr std::uint64_t kLongest = 20'000'000;

TEST(ClockWatchTest, CallsAtTheInstantAndWhenTheZoneIsReplaced) {
    std::string folder = testing::TempDir() + "etcXXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    EventLoop loop;
    {
        int ticks = 0;
        int zones = 0;
        const Clocks clocks;
        ClockWatch watch(loop, clocks, {[&] { ++ticks; }, [&] { ++zones; }}, folder.c_str());
        const auto runUntil = [&](const int& count, int reached) {
            while (count < reached)
                if (sd_event_run(loop.get(), kLongest) <= 0) break;
            return count;
        };
        const Instant due = clocks.now().instant() + 1;
        watch.waitFor(due);
        ASSERT_EQ(runUntil(ticks, 1), 1);
        EXPECT_GE(clocks.now().instant(), due);
        watch.waitFor(due - 100);  // one that has passed is not lost
        EXPECT_EQ(runUntil(ticks, 2), 2);
        EXPECT_EQ(sd_event_run(loop.get(), 200'000), 0);  // and it is over

        std::filesystem::create_symlink("/some/zone", folder + "/other");
        std::filesystem::create_symlink("/some/zone", folder + "/new");
        while (sd_event_run(loop.get(), 200'000) > 0) continue;
        EXPECT_EQ(zones, 0);
        std::filesystem::rename(folder + "/new", folder + "/localtime");
        EXPECT_GE(runUntil(zones, 1), 1);

        // The zones' package is upgraded; then the zone is a file of its own, which counts once it is written.
        const std::string zone = folder + "/zone";
        std::filesystem::create_directory(zone);
        std::ofstream(zone + "/Paris") << "old";
        std::filesystem::create_symlink(zone + "/Paris", folder + "/new");
        std::filesystem::rename(folder + "/new", folder + "/localtime");
        while (sd_event_run(loop.get(), 200'000) > 0) continue;
        zones = 0;
        std::ofstream(zone + "/Paris.new") << "new";
        std::filesystem::rename(zone + "/Paris.new", zone + "/Paris");
        EXPECT_EQ(runUntil(zones, 1), 1);
        std::filesystem::remove(folder + "/localtime");
        {
            std::ofstream file(folder + "/localtime");
            while (sd_event_run(loop.get(), 200'000) > 0) continue;
            zones = 0;
            file << "all of it";
        }
        EXPECT_EQ(runUntil(zones, 1), 1);
        EXPECT_EQ(ticks, 2);
    }
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace quorel
