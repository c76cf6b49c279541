#include "qt/host/Forecast.h"

#include <ctime>

#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "scheduler/Agenda.h"
#include "scheduler/ScheduleReading.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

/// Whatever a Schedule does, it is known: only when is asked here.
class AnyAction : public Actions {
    std::optional<Module> module(const std::string&) const override { return Module{true, 0}; }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}
};

constexpr Seconds kSoon = kHour;
constexpr int kDaysByName = 7;

}  // namespace

Forecast::Answer Forecast::of(const Value& schedule) const {
    if (schedule[schedule_keys::kIsEnabled].intValue() == 0) return {.at = {}, .fault = {}, .isOff = true};
    const ListReading reading = readScheduleList(Array{schedule}, AnyAction());
    if (reading.schedules.empty()) return {.at = {}, .fault = translated("there is no such time")};
    const auto next = Agenda(_calendar, reading.schedules).after(std::time(nullptr), 1);
    if (next.empty()) return {.at = {}, .fault = translated("no day is chosen")};
    return {.at = next.front().due, .fault = {}};
}

std::string nearText(Instant at, Instant now) {
    const SystemCalendar calendar;
    const auto days = (calendar.dateOf(at) - calendar.dateOf(now)).count();
    const std::string time = timeText(at);
    if (days == 0 && at > now && at - now < kSoon)
        return filled(translated("today {1}, in {2} min"), {time, std::to_string((at - now + 59) / 60)});
    if (days == 0) return filled(translated("today {1}"), {time});
    if (days == 1) return filled(translated("tomorrow {1}"), {time});
    if (days > 1 && days < kDaysByName) {
        const std::string moment = momentText(at);  // its first word is the day's name
        return filled(translated("{1} {2}"), {moment.substr(0, moment.find(' ')), time});
    }
    return momentText(at);
}

}  // namespace quorel::qt
