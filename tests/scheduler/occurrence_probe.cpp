// Says when Schedules occur. Argument: the instants between which; the zone is the environment's. From standard input a
// Schedule a line: hour, minute and seven flags from Monday on. To standard output, in order: instant, number of line.
#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>

#include "linux/time/SystemCalendar.h"
#include "scheduler/Agenda.h"

int main(int, char** arguments) {
    using namespace quorel;
    Agenda::Schedules schedules;
    std::map<const ScheduleReading*, std::size_t> numbers;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream fields(line);
        auto schedule = std::make_shared<ScheduleReading>();
        fields >> schedule->hour >> schedule->minute;
        for (bool& day : schedule->days) fields >> day;
        schedule->digest = numbers.size();  // of equal ones one alone would run
        numbers.emplace(schedule.get(), numbers.size());
        schedules.push_back(std::move(schedule));
    }
    const SystemCalendar calendar;
    const Agenda agenda(calendar, std::move(schedules));
    // Asked for a few at a time, as it is used: what is asked for next begins where the last answer ended.
    const Instant end = std::atoll(arguments[2]);
    for (Instant at = std::atoll(arguments[1]); at < end;) {
        const std::vector<Occurrence> some = agenda.after(at, 100'000, nullptr, true);
        for (const Occurrence& one : some) {
            if (one.due < end) std::cout << one.due << ' ' << numbers[one.schedule.get()] << '\n';
        }
        at = some.empty() ? end : some.back().due;
    }
}
