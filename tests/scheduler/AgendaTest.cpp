#include <gtest/gtest.h>

#include "scheduler/Agenda.h"
#include "tests/scheduler/VirtualWorld.h"

namespace quorel {
namespace {

LocalDate date(int year, unsigned month, unsigned day) {
    return LocalDate(
        std::chrono::local_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day)));
}

TEST(Calendar, Instants) {
    const struct {
        const char* zone;
        LocalDate day;
        int hour, minute;
        std::optional<Instant> instant;
    } rows[] = {
        {"Europe/Paris", date(2027, 3, 28), 1, 59, 1806195540},         // 00:59 UTC
        {"Europe/Paris", date(2027, 3, 28), 2, 30, 1806197400},         // leapt over: 03:30
        {"Europe/Paris", date(2027, 3, 28), 3, 0, 1806195600},          // 01:00 UTC
        {"Europe/Paris", date(2027, 10, 31), 2, 30, 1824942600},        // twice: the first, 00:30 UTC
        {"Europe/Paris", date(2027, 10, 31), 3, 0, 1824948000},         // 02:00 UTC
        {"Australia/Lord_Howe", date(2027, 10, 3), 2, 15, 1822491900},  // leapt over by half an hour: 02:45
        {"Australia/Lord_Howe", date(2027, 4, 4), 1, 45, 1806763500},   // half an hour twice: the first, 14:45 UTC
        {"Pacific/Apia", date(2011, 12, 30), 12, 0, std::nullopt},      // the day does not exist
        {"Pacific/Apia", date(2011, 12, 31), 0, 0, 1325239200},
        {"America/Nuuk", date(2026, 3, 28), 23, 30, 1774747800},  // leapt over into the next day: 00:30
        {"UTC", date(2028, 2, 29), 12, 0, 1835438400},            // leap day
    };
    for (const auto& row : rows) {
        setZone(row.zone);
        EXPECT_EQ(SystemCalendar().instantOf(row.day, row.hour, row.minute), row.instant)
            << row.zone << " " << row.hour << ":" << row.minute;
    }
}

TEST(Calendar, KeepsItsZoneUntilRefreshed) {
    setZone("UTC");
    SystemCalendar calendar;
    const Instant before = *calendar.instantOf(date(2027, 3, 1), 12, 0);
    setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(calendar.instantOf(date(2027, 3, 1), 12, 0), before);
    calendar.refresh();
    EXPECT_EQ(calendar.instantOf(date(2027, 3, 1), 12, 0), before - 9 * kHour);
}

/// The values of a Schedule and what is read in them: time, kind, needs and idle seconds, or the fault.
TEST(Reading, Values) {
    VirtualWorld world;
    const Value sleep = every("Sleep", 23, 5);
    const auto with = [&](const char* key, Value value) {
        return sleep.with("Action Parameters", Dictionary{{"Only When Idle", 1}, {key, std::move(value)}});
    };
    const struct {
        Value schedule;
        std::string said;
    } rows[] = {
        {sleep, "23:5"},
        {sleep.with("Action Hour", "7 h").with("Action Minute", " +09"), "7:9"},
        {sleep.with("Action Hour", Value()).with("Action Minute", Array{}), "0:0"},
        {sleep.with("Action Hour", 5.9), "5:5"},
        {sleep.with("Action Hour", 24), "hour"},
        {sleep.with("Action Hour", std::int64_t{1} << 32), "0:5"},
        {sleep.with("Action Minute", "-1"), "minute"},
        {sleep.with("Is Enabled", "no"), "none"},
        {sleep.with("Is Enabled", "2"), "23:5"},
        {sleep.with("Action Type", 5), "action"},
        {sleep.with("Action Parameters", "text"), "23:5"},
        {every("Sleep", 1, 1, {{"Needs Wake Up", true}, {"Needs Startup", true}}), "1:1"},
        {every("WakeUp", 1, 1, {{"Needs Wake Up", false}, {"Needs Startup", "1"}}), "1:1 wakes starts"},
        {every("WakeUp", 1, 1, {{"Needs Startup", 0.5}}), "1:1 wakes"},
        {every("Plain", 1, 1, {{"Needs Wake Up", 7}}), "1:1 wakes"},
        {every("ShutDown", 1, 1, {{"Restart", true}}), "1:1 restarts"},
        {every("Empty", 1, 1), "program"},
        {Dictionary{{"Is Enabled", 1}, {"Action Type", schedule_keys::kSleepType}}, "0:0 days"},
        {with("x", 1), "23:5 idle 900"},
        {with("Idle Minutes", "20 minutes"), "23:5 idle 1200"},
        {with("Idle Minutes", 0), "23:5 idle 60"},
        {with("Idle Minutes", 1e9), "23:5 idle 59940"},
        {"no dictionary", "none"},
    };
    for (const auto& row : rows) {
        const ListReading reading = readScheduleList(Array{row.schedule}, world);
        std::string said = reading.faults.empty() ? "none" : std::string(reading.faults[0].reason);
        for (const auto& one : reading.schedules) {
            said = std::to_string(one->hour) + ":" + std::to_string(one->minute);
            said += std::string(one->wakes ? " wakes" : "") + (one->starts ? " starts" : "");
            said += std::string(one->restarts ? " restarts" : "");
            if (one->idle) said += " idle " + std::to_string(one->idle);
            if (!reading.faults.empty()) said += " " + std::string(reading.faults[0].reason);
        }
        EXPECT_EQ(said, row.said);
    }
    EXPECT_TRUE(readScheduleList("no list", world).schedules.empty());
}

TEST(Agenda, NextOnes) {
    VirtualWorld world;
    Value monday = every("Plain", 12, 0);
    for (const std::string_view day : schedule_keys::kActiveOnDays)
        monday = monday.with(day, day == "Active On Monday");
    const Array list = {every("Sleep", 23, 0), monday, monday, every("WakeUp", 23, 0)};
    setZone("UTC");
    const SystemCalendar calendar;
    const Agenda agenda(calendar, readScheduleList(list, world).schedules);
    std::vector<std::string> said;
    for (const Occurrence& one : agenda.after(VirtualWorld::at(0, 11, 59), 7)) {
        said.push_back(VirtualWorld::clock(one.due) + " " + one.schedule->action.substr(18));
    }
    EXPECT_EQ(said, (std::vector<std::string>{"12:00 Plain", "23:00 WakeUp", "23:00 Sleep", "+1 23:00 WakeUp",
                                              "+1 23:00 Sleep", "+2 23:00 WakeUp", "+2 23:00 Sleep"}));
    const auto plain = [](const ScheduleReading& schedule) { return schedule.kind == ActionKind::kModule; };
    EXPECT_EQ(agenda.after(VirtualWorld::at(0, 12, 0), 1, plain, true).size(), 1u);
    EXPECT_EQ(agenda.after(VirtualWorld::at(0, 12, 0), 1, plain)[0].due, VirtualWorld::at(7, 12, 0));
    EXPECT_TRUE(Agenda(calendar, {}).after(0, 5).empty());
}

}  // namespace
}  // namespace quorel
