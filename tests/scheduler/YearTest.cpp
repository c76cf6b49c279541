#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "tests/scheduler/VirtualWorld.h"

namespace quorel {
namespace {

/// A year of a computer that sleeps, is off, is killed, has its clock set and its list saved, in a zone with summer
/// time. Whatever happens, each occurrence of the list is told of exactly once.
TEST(Year, EachOccurrenceExactlyOnce) {
    const char* const zone = "Europe/Paris";
    VirtualWorld world(zone);
    const Array list = {every("Sleep", 23, 15),
                        every("WakeUp", 7, 0),
                        every("Plain", 2, 30),
                        every("Late", 12, 0),
                        every("Sleep", 14, 0, {{"Only When Idle", 1}}),
                        every("ShutDown", 20, 0)};
    world.farAlarms = false;
    world.conditions.sessions = {{"ann", true, 0, {}}};
    world.begin(0, 30, 0, list);
    std::mt19937 random(14);
    const auto chance = [&](unsigned of) { return random() % of == 0; };
    Seconds set = 0;
    std::size_t most = 0;
    const Instant end = VirtualWorld::at(365, 0, 0);
    while (world.now.instant() < end) {
        world.wakenAt = world.now.instant() + static_cast<Seconds>(random() % (14 * kHour));
        world.conditions.sessions[0].agentIdle = chance(2) ? 0 : 3600;
        world.conditions.inhibitors.clear();
        if (chance(4)) world.conditions.inhibitors = {{"apt", "upgrade"}};
        world.lonely = chance(3);
        if (!world.lonely) world.scheduler->agentCame(world.now);
        world.until(world.now.instant() + 1 + static_cast<Seconds>(random() % (5 * kHour)));
        const unsigned what = random() % 10;
        const std::vector<Upcoming> upcoming = world.scheduler->upcoming(3);
        if (what == 0) world.sleep();
        if (what == 1) world.off(static_cast<Seconds>(random() % (30 * kHour)), chance(2));
        if (what == 2) world.kill(), world.pass(static_cast<Seconds>(random() % 400), true), world.boot();
        if (what == 3) world.saveList(list);
        if (what == 4) world.scheduler->skip(world.now, upcoming[random() % 3].token, "ann");
        if (what == 5) world.scheduler->postpone(world.now, upcoming[random() % 3].token, "ann");
        if (what == 6) {
            // To and fro, by less than a correction.
            const Seconds by = set ? -set : static_cast<Seconds>(random() % 10'000);
            world.setClock(by), set += by;
        }
        if (what == 7) world.replies = {PowerReply::kRefused};
        if (what == 8 && chance(4)) {
            // Set aside, and then no more.
            Array more = list;
            more.push_back(every("Plain2", 9, 0));
            world.saveList(more);
            for (const Upcoming& one : world.scheduler->upcoming(8)) {
                if (one.schedule->action.ends_with("Plain2")) world.scheduler->postpone(world.now, one.token, "ann");
            }
            world.saveList(list);
        }
        most = std::max(most, world.stored["Open"].array().size());
    }
    world.until(world.now.instant() + 2 * kDay);

    std::map<std::pair<Instant, std::string>, std::int64_t> told;
    std::map<std::string, std::int64_t> perAction, codes;
    for (const Outcome& outcome : world.outcomes) {
        ++codes[outcome.code];
        if (!outcome.due || outcome.code == outcome::kWithdrawn) continue;
        ++told[{outcome.due, outcome.action}];
        perAction[outcome.action] += outcome.code == "missed" ? outcome.arguments["Count"].integer() : 1;
    }
    for (const auto& [one, times] : told) EXPECT_EQ(times, 1) << VirtualWorld::clock(one.first) << " " << one.second;
    // All that the list has up to now, but for what is still open.
    std::map<std::string, std::int64_t> expected;
    setZone(zone);
    const SystemCalendar calendar;
    const Agenda agenda(calendar, readScheduleList(list, world).schedules);
    agenda.visit(VirtualWorld::at(0, 0, 30), world.now.instant(),
                 [&](const Occurrence& one) { ++expected[one.schedule->action]; });
    for (const Upcoming& one : world.scheduler->upcoming(50)) {
        if (one.due <= world.now.instant()) --expected[one.schedule->action];
    }
    EXPECT_EQ(perAction, expected);
    // The year had some of everything, and what is kept does not grow.
    for (const char* code : {"slept", "shut-down", "woke-up", "awake-already", "ran", "missed", "skipped", "withdrawn",
                             "gave-up", "overtaken", "not-started"}) {
        EXPECT_GT(codes[code], 0) << code;
    }
    EXPECT_LT(most, 12u);
    EXPECT_EQ(world.scheduler->outcomes().size(), 500u);
}

}  // namespace
}  // namespace quorel
