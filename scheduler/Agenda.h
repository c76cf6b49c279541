#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "scheduler/Calendar.h"
#include "scheduler/Occurrence.h"

namespace quorel {

/// When the Schedules of one list occur. Everything is reckoned when asked, in the calendar's present zone.
class Agenda {
public:
    using Schedules = std::vector<std::shared_ptr<const ScheduleReading>>;
    using Wanted = std::function<bool(const ScheduleReading&)>;

    /// The calendar must outlive it.
    Agenda(const Calendar& calendar, Schedules schedules);

    /// The first `most` after an instant, of wanted Schedules: by time, those of one minute in the order in which they
    /// run. `wholeMinutes` takes in all others of the last one's minute.
    std::vector<Occurrence> after(Instant instant, std::size_t most, const Wanted& wanted = nullptr,
                                  bool wholeMinutes = false) const;
    /// All with `from` < due <= `upTo`, in no order.
    void visit(Instant from, Instant upTo, const std::function<void(const Occurrence&)>& visitor) const;
    /// The Schedule of an occurrence that another list brought forth, or null when this list has none like it.
    std::shared_ptr<const ScheduleReading> scheduleOf(std::uint64_t digest, unsigned weekday) const;

private:
    struct Hit {
        Instant due;
        std::size_t schedule;  ///< its place
        unsigned weekday;
    };
    void collectDay(LocalDate date, const Wanted& wanted, std::vector<Hit>& into) const;
    Occurrence occurrence(const Hit& hit) const { return {hit.due, _schedules[hit.schedule], hit.weekday}; }

    const Calendar& _calendar;
    Schedules _schedules;  ///< each once
};

}  // namespace quorel
