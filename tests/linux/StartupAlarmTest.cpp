#include "linux/time/StartupAlarm.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace quorel {
namespace {

using Result = StartupAlarm::Result;
using Number = std::optional<Instant>;

/// A folder like the kernel's. Its clock runs two hours ahead of the computer's, as one in local time may.
class StartupAlarmTest : public testing::Test {
protected:
    static constexpr Instant kNow = 1'000'000;
    static constexpr Seconds kAhead = 7200;

    StartupAlarmTest() {
        std::string name = testing::TempDir() + "rtcXXXXXX";
        _folder = mkdtemp(name.data());
        write("since_epoch", kNow + kAhead);
    }
    ~StartupAlarmTest() override { std::filesystem::remove_all(_folder); }

    void write(const char* name, Number number) {
        std::ofstream file(_folder + "/" + name);
        if (number) file << *number << "\n";
    }
    Number read(const char* name) {
        std::ifstream file(_folder + "/" + name);
        Instant number = 0;
        return file >> number && number != 0 ? Number(number) : std::nullopt;
    }
    StartupAlarm alarm() { return {_folder, _folder + "/note"}; }

    std::string _folder;
};

TEST_F(StartupAlarmTest, OursMovesWithTheHardwaresClock) {
    write("wakealarm", {});
    alarm().set(kNow + 600, kNow);
    EXPECT_EQ(alarm().comes(kNow), kNow + 600);
    write("since_epoch", kNow);
    EXPECT_EQ(alarm().comes(kNow), kNow + 600 + kAhead);
    write("wakealarm", kNow + 300);  // somebody else's
    EXPECT_EQ(alarm().comes(kNow), std::nullopt);
}

TEST_F(StartupAlarmTest, OursGivesWayToEarlierOnesOnly) {
    // Present alarm and the noted one by the hardware's clock; others by the computer's, relative to now.
    struct {
        Number present, noted, wanted;
        Result result;
        Number stands, others;
    } const cases[] = {
        {{}, {}, 600, Result::kDone, 600, {}},   {{}, {}, {}, Result::kDone, {}, {}},
        {900, 900, 600, Result::kDone, 600, {}}, {300, 300, 600, Result::kDone, 600, {}},
        {300, 300, {}, Result::kDone, {}, {}},   {300, 900, 600, Result::kTaken, 300, 300},
        {300, {}, {}, Result::kDone, 300, 300},  {900, {}, 600, Result::kReplaced, 600, 900},
        {-300, {}, 600, Result::kDone, 600, {}}, {300, 300, -1, Result::kPast, {}, {}},
        {300, {}, 2, Result::kPast, 300, 300},   {{}, {}, 0, Result::kPast, {}, {}},
    };
    int number = 0;
    for (const auto& one : cases) {
        SCOPED_TRACE(number++);
        const auto shown = [](Number after) { return after ? Number(*after + kNow + kAhead) : std::nullopt; };
        write("wakealarm", shown(one.present));
        write("note", shown(one.noted));
        const auto outcome = alarm().set(one.wanted ? Number(*one.wanted + kNow) : std::nullopt, kNow);
        EXPECT_EQ(outcome.result, one.result);
        EXPECT_EQ(read("wakealarm"), shown(one.stands));
        EXPECT_EQ(outcome.others, one.others ? Number(*one.others + kNow) : std::nullopt);
        if (outcome.result == Result::kTaken || !one.wanted) continue;
        EXPECT_EQ(alarm().set({}, kNow).result, Result::kDone);  // a later run knows which is its own
        EXPECT_EQ(read("wakealarm"), one.result == Result::kPast ? shown(one.stands) : std::nullopt);
    }
}

TEST_F(StartupAlarmTest, TellsWhatTheComputerLacks) {
    EXPECT_EQ(alarm().set(kNow + 600, kNow).result, Result::kAbsent);
    EXPECT_FALSE(alarm().reachesFar());
    std::filesystem::create_directory(_folder + "/wakealarm");
    EXPECT_EQ(alarm().set(kNow + 600, kNow).result, Result::kFailed);
    std::filesystem::remove(_folder + "/wakealarm");
    write("wakealarm", {});
    EXPECT_TRUE(alarm().reachesFar());
    EXPECT_EQ(read("wakealarm"), std::nullopt);
    for (const Seconds ahead : {600, 900}) {
        write("wakealarm", kNow + kAhead + ahead);
        EXPECT_EQ(alarm().reachesFar(), ahead == 600);  // ours, and somebody else's: not to be tried
        EXPECT_EQ(read("wakealarm"), kNow + kAhead + ahead);
    }
}

}  // namespace
}  // namespace quorel
