#include "scheduler/Agenda.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

namespace quorel {

namespace {

/// A Schedule occurs within a week, or within two when a day does not exist.
constexpr int kMostEmptyDays = 15;
constexpr std::chrono::days kOneDay{1};

}  // namespace

/// Of equal Schedules the first stands for all, on the days of all.
Agenda::Agenda(const Calendar& calendar, Schedules schedules) : _calendar(calendar) {
    std::unordered_map<std::uint64_t, std::size_t> places;
    for (auto& schedule : schedules) {
        const auto [known, isNew] = places.emplace(schedule->digest, _schedules.size());
        if (isNew) {
            _schedules.push_back(std::move(schedule));
        } else if (auto& first = _schedules[known->second]; first->days != schedule->days) {
            ScheduleReading joined = *first;
            for (std::size_t day = 0; day < joined.days.size(); ++day) joined.days[day] |= schedule->days[day];
            first = std::make_shared<const ScheduleReading>(std::move(joined));
        }
    }
}

void Agenda::collectDay(LocalDate date, const Wanted& wanted, std::vector<Hit>& into) const {
    const unsigned weekday = std::chrono::weekday(date).iso_encoding() - 1;
    for (std::size_t place = 0; place < _schedules.size(); ++place) {
        const ScheduleReading& schedule = *_schedules[place];
        if (!schedule.days[weekday] || (wanted && !wanted(schedule))) continue;
        const std::optional<Instant> due = _calendar.instantOf(date, schedule.hour, schedule.minute);
        if (due) into.push_back({*due, place, weekday});
    }
}

// A leap of the clock at midnight moves a time into the next day. So the day before is looked at too, and one more
// after those that brought enough.
std::vector<Occurrence> Agenda::after(Instant instant, std::size_t most, const Wanted& wanted,
                                      bool wholeMinutes) const {
    if (most == 0) return {};
    std::vector<Hit> hits;
    bool enough = false;
    int emptyDays = 0;
    for (LocalDate date = _calendar.dateOf(instant) - kOneDay; emptyDays < kMostEmptyDays; date += kOneDay) {
        const std::size_t before = hits.size();
        collectDay(date, wanted, hits);
        const auto past = [&](const Hit& hit) { return hit.due <= instant; };
        hits.erase(std::remove_if(hits.begin() + static_cast<std::ptrdiff_t>(before), hits.end(), past), hits.end());
        if (enough) break;
        enough = hits.size() >= most;
        emptyDays = hits.size() == before ? emptyDays + 1 : 0;
    }

    const auto order = [&](const Hit& a, const Hit& b) {
        const auto key = [&](const Hit& hit) {
            return std::tuple(hit.due, _schedules[hit.schedule]->kind, hit.schedule, hit.weekday);
        };
        return key(a) < key(b);
    };
    if (hits.size() > most) {
        const auto last = hits.begin() + static_cast<std::ptrdiff_t>(most - 1);
        std::nth_element(hits.begin(), last, hits.end(), order);
        const Instant end = last->due;
        if (wholeMinutes) {
            std::erase_if(hits, [&](const Hit& hit) { return hit.due > end; });
        } else {
            hits.resize(most);
        }
    }
    std::sort(hits.begin(), hits.end(), order);
    std::vector<Occurrence> result;
    result.reserve(hits.size());
    for (const Hit& hit : hits) result.push_back(occurrence(hit));
    return result;
}

// Where the clock goes back over midnight, what it has shown of the next day lies before the end, too.
void Agenda::visit(Instant from, Instant upTo, const std::function<void(const Occurrence&)>& visitor) const {
    std::vector<Hit> hits;
    const LocalDate end = _calendar.dateOf(upTo) + kOneDay;
    for (LocalDate date = _calendar.dateOf(from) - kOneDay; date <= end; date += kOneDay) {
        hits.clear();
        collectDay(date, nullptr, hits);
        for (const Hit& hit : hits) {
            if (hit.due > from && hit.due <= upTo) visitor(occurrence(hit));
        }
    }
}

std::shared_ptr<const ScheduleReading> Agenda::scheduleOf(std::uint64_t digest, unsigned weekday) const {
    for (const auto& schedule : _schedules)
        if (schedule->digest == digest && schedule->days[weekday]) return schedule;
    return nullptr;
}

}  // namespace quorel
