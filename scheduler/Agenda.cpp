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

Agenda::Agenda(const Calendar& calendar, Schedules schedules) : _calendar(calendar) {
    std::unordered_map<std::uint64_t, std::array<unsigned, 7>> counts;
    _entries.reserve(schedules.size());
    for (auto& schedule : schedules) {
        std::array<unsigned, 7>& count = counts[schedule->digest];
        const std::array<unsigned, 7> numbers = count;
        for (std::size_t day = 0; day < count.size(); ++day) count[day] += schedule->days[day] ? 1 : 0;
        _entries.push_back({std::move(schedule), numbers});
    }
}

void Agenda::collectDay(LocalDate date, const Wanted& wanted, std::vector<Hit>& into) const {
    const unsigned weekday = std::chrono::weekday(date).iso_encoding() - 1;
    for (std::size_t index = 0; index < _entries.size(); ++index) {
        const ScheduleReading& schedule = *_entries[index].schedule;
        if (!schedule.days[weekday] || (wanted && !wanted(schedule))) continue;
        const std::optional<Instant> due = _calendar.instantOf(date, schedule.hour, schedule.minute);
        if (due) into.push_back({*due, index, weekday});
    }
}

Occurrence Agenda::occurrence(const Hit& hit) const {
    const Entry& entry = _entries[hit.entry];
    return {hit.due, entry.schedule, hit.weekday, entry.numbers[hit.weekday]};
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
            return std::tuple(hit.due, _entries[hit.entry].schedule->kind, hit.entry, hit.weekday);
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

void Agenda::visit(Instant from, Instant upTo, const std::function<void(const Occurrence&)>& visitor) const {
    std::vector<Hit> hits;
    const LocalDate end = _calendar.dateOf(upTo);
    for (LocalDate date = _calendar.dateOf(from) - kOneDay; date <= end; date += kOneDay) {
        hits.clear();
        collectDay(date, nullptr, hits);
        for (const Hit& hit : hits) {
            if (hit.due > from && hit.due <= upTo) visitor(occurrence(hit));
        }
    }
}

std::shared_ptr<const ScheduleReading> Agenda::scheduleOf(std::uint64_t digest, unsigned weekday,
                                                          unsigned number) const {
    for (const Entry& entry : _entries) {
        const bool same = entry.schedule->digest == digest && entry.schedule->days[weekday];
        if (same && entry.numbers[weekday] == number) return entry.schedule;
    }
    return nullptr;
}

}  // namespace quorel
