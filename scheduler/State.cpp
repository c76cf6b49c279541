#include "scheduler/State.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

constexpr int kVersion = 1;
constexpr std::size_t kMostOutcomes = 500;
constexpr Instant kLatest = 100'000'000'000;  // some three thousand years ahead; sums stay sums

/// Reads entries of one dictionary; after the first that is not what it must be, all is lost.
struct Reader {
    const Value& dictionary;
    bool good = true;

    std::int64_t number(std::string_view key, std::int64_t least = 0, std::int64_t most = kLatest) {
        const Value& value = dictionary[key];
        good = good && value.isInteger() && value.integer() >= least && value.integer() <= most;
        return good ? value.integer() : 0;
    }
    /// One that version 1.0 did not write.
    std::int64_t laterNumber(std::string_view key) { return dictionary[key].isPresent() ? number(key) : 0; }
    std::string text(std::string_view key) {
        good = good && dictionary[key].isText();
        return dictionary[key].text();
    }
    bool flag(std::string_view key) {
        good = good && dictionary[key].isBoolean();
        return dictionary[key].intValue() != 0;
    }
};

/// What only a sleep or shut-down, only another action, and what anything can be in.
bool canBeIn(const std::string& action, Step step) {
    const bool isPower = action == schedule_keys::kSleepType || action == schedule_keys::kShutDownType;
    const Column column = rowOf(step).column;
    const bool staysAwake = action == schedule_keys::kStayAwakeType;
    if (column == Column::kInCourse) return isPower;
    if (column == Column::kStayingAwake) return staysAwake;
    if (column == Column::kRunning) return !isPower && !staysAwake;
    return !isPower || (column != Column::kMakeUp && column != Column::kAwaited);
}

Step stepOf(const std::string& action, const std::string& name) {
    const auto row =
        std::ranges::find_if(kSteps, [&](const StepRow& one) { return one.name == name && canBeIn(action, one.step); });
    return row != std::end(kSteps) ? row->step : Step::kActing;
}

StoredState::Open openFrom(Reader& reader) {
    StoredState::Open open;
    open.action = reader.text("Action");
    open.due = reader.number("Due");
    open.at = reader.number("At");
    open.weekday = static_cast<unsigned>(reader.number("Weekday", 0, 6));
    open.by = reader.text("By");
    open.madeUp = reader.flag("Made Up");
    open.next = reader.laterNumber("Next");
    open.waited.since = reader.number("Waiting Since");
    open.waited.heldSince = std::max(open.waited.since, reader.laterNumber("Held Since"));
    open.waited.byUse = reader.dictionary["By Use"].intValue() != 0;
    open.step = stepOf(open.action, reader.text("Step"));
    const std::string digest = reader.text("Digest");
    const auto read = std::from_chars(digest.data(), digest.data() + digest.size(), open.digest, 16);
    reader.good = reader.good && open.step != Step::kPlanned && read.ec == std::errc() && *read.ptr == '\0';
    return open;
}

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
    return {digits.begin(), end};
}

}  // namespace

Value StoredState::value() const {
    Array opens;
    for (const Open& one : open) {
        opens.push_back(Dictionary{{"Action", one.action},
                                   {"Digest", hexadecimal(one.digest)},
                                   {"Due", one.due},
                                   {"At", one.at},
                                   {"Weekday", static_cast<int>(one.weekday)},
                                   {"Step", nameOf(one.step)},
                                   {"By", one.by},
                                   {"Made Up", one.madeUp},
                                   {"Next", one.next},
                                   {"Waiting Since", one.waited.since},
                                   {"Held Since", one.waited.heldSince},
                                   {"By Use", one.waited.byUse}});
    }
    Array paused;
    for (const Pause& one : pauses)
        paused.push_back(Dictionary{{"From", one.from},
                                    {"Until", one.until},
                                    {"By", one.by},
                                    {"Brief", one.isBrief},
                                    {"Count", one.count},
                                    {"Ended", one.isEnded}});
    return Dictionary{
        {"Version", kVersion}, {"Watermark", watermark},   {"Awake Until", awakeUntil},   {"Boot", bootId},
        {"Slept", slept},      {"Open", std::move(opens)}, {"Pauses", std::move(paused)}, {"Outcomes", outcomes}};
}

std::optional<StoredState> StoredState::from(const Value& value) {
    Reader reader{value};
    reader.number("Version", kVersion, kVersion);
    StoredState state;
    state.watermark = reader.number("Watermark");
    state.awakeUntil = reader.number("Awake Until");
    state.bootId = reader.text("Boot");
    state.slept = reader.number("Slept", 0, kLatest * 1000);
    for (const Value& one : value["Open"].array()) {
        Reader inner{one};
        state.open.push_back(openFrom(inner));
        reader.good = reader.good && inner.good;
    }
    for (const Value& one : value["Pauses"].array()) {
        Reader inner{one};
        state.pauses.push_back({inner.number("From"), inner.number("Until"), inner.text("By"),
                                one["Brief"].intValue() != 0, inner.number("Count"), one["Ended"].intValue() != 0});
        reader.good = reader.good && inner.good && state.pauses.size() <= rules::kMostPauses;
    }
    if (!reader.good) return std::nullopt;
    for (const Value& one : value["Outcomes"].array()) {
        if (one.isDictionary()) keepOutcome(state.outcomes, one);
    }
    return state;
}

void keepOutcome(Array& outcomes, Value outcome) {
    if (outcomes.size() >= kMostOutcomes) outcomes.erase(outcomes.begin());
    outcomes.push_back(std::move(outcome));
}

}  // namespace quorel
