#include "ctl/Forecast.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "scheduler/Agenda.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

/// What the descriptions say, for reading a list; nothing is ever run.
class KnownActions : public Actions {
public:
    explicit KnownActions(const ActionWords& words) : _words(words) {}
    std::optional<Module> module(const std::string& action) const override {
        const ActionDescription* description = _words.description(action);
        if (!description) return {};
        return Module{!description->program.empty(), description->makeUp};
    }
    void start(const Occurrence&, bool) override {}
    void find(const Occurrence&) override {}

private:
    const ActionWords& _words;
};

/// Of "DUE-DIGEST", behind which another number may stand.
std::optional<std::uint64_t> digestIn(const std::string& token) {
    const std::size_t begin = token.find('-') + 1;
    std::uint64_t digest = 0;
    const char* end = token.data() + token.size();
    const auto [last, error] = std::from_chars(token.data() + begin, end, digest, 16);
    return begin > 0 && error == std::errc() && (last == end || *last == '-') ? std::optional(digest) : std::nullopt;
}

}  // namespace

Forecast::Forecast(const Array& schedules, const ActionWords& actions, const Array& pauses, const Array& faults)
    : _entries(read(schedules, actions)) {
    for (const Value& fault : faults) {
        const std::int64_t number = fault[keys::kNumber].integer();
        const bool isInList = number >= 1 && number <= std::ssize(_entries);
        Entry* const entry = isInList ? &_entries[static_cast<std::size_t>(number - 1)] : nullptr;
        if (entry && entry->action == fault[keys::kAction].text()) entry->fault = fault;
    }
    std::vector<Pause> all;
    for (const Value& one : pauses)
        all.push_back({.from = one[keys::kFrom].integer(), .until = one[keys::kUntil].integer()});
    _pauses.restore(std::move(all));
}

std::vector<Forecast::Entry> Forecast::read(const Array& schedules, const ActionWords& actions) {
    const KnownActions known(actions);
    std::vector<Entry> entries;
    for (const Value& schedule : schedules) {
        const ListReading reading = readScheduleList(Array{schedule}, known);
        Entry& entry = entries.emplace_back();
        entry.action = plainText(schedule[schedule_keys::kActionType].text());
        if (!reading.schedules.empty()) entry.reading = reading.schedules.front();
        if (reading.faults.empty()) continue;
        Dictionary fault{{keys::kNumber, std::ssize(entries)},
                         {keys::kAction, entry.action},
                         {keys::kReason, reading.faults.front().reason}};
        const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
        if (description) fault.set(keys::kNames, description->names);
        entry.fault = std::move(fault);
    }
    return entries;
}

std::optional<Occurrence> Forecast::after(std::size_t index, Instant instant) const {
    const auto& reading = _entries[index].reading;
    if (!reading) return {};
    const Agenda agenda(_calendar, {reading});
    while (true) {
        const auto found = agenda.after(instant, 1);
        if (found.empty()) return {};
        const Instant due = found.front().due, free = _pauses.firstFree(due);
        if (free == due) return found.front();
        instant = free - 1;
    }
}

std::optional<Instant> Forecast::next(std::size_t index, Instant now) const {
    const auto found = after(index, now);
    return found ? std::optional(found->due) : std::nullopt;
}

std::string Forecast::token(std::size_t index, Instant now) const {
    const auto found = after(index, now);
    return found ? found->token() : std::string();
}

std::optional<std::size_t> Forecast::indexOf(const std::string& token, Instant due) const {
    const auto digest = digestIn(token);
    const unsigned weekday = std::chrono::weekday(_calendar.dateOf(due)).iso_encoding() - 1;
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        const auto& reading = _entries[i].reading;
        if (digest && reading && reading->digest == *digest && reading->days[weekday]) return i;
    }
    return {};
}

}  // namespace quorel
