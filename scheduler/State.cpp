#include "scheduler/State.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "model/Dictionary.h"

namespace quorel {

namespace {

constexpr int kVersion = 1;
constexpr std::size_t kMostOutcomes = 500;
constexpr Instant kLatest = 100'000'000'000;  // some three thousand years ahead; sums stay sums

/// In the order of Step.
constexpr std::array<std::string_view, 12> kSteps = {"planned", "skipped", "done",     "postponed",
                                                     "make-up", "awaited", "running",  "looking",
                                                     "waiting", "warned",  "checking", "acting"};

/// Reads entries of one dictionary; after the first that is not what it must be, all is lost.
struct Reader {
    const Value& dictionary;
    bool good = true;

    std::int64_t number(std::string_view key, std::int64_t least = 0, std::int64_t most = kLatest) {
        const Value& value = dictionary[key];
        good = good && value.isInteger() && value.integer() >= least && value.integer() <= most;
        return good ? value.integer() : 0;
    }
    std::string text(std::string_view key) {
        good = good && dictionary[key].isText();
        return dictionary[key].text();
    }
    bool flag(std::string_view key) {
        good = good && dictionary[key].isBoolean();
        return dictionary[key].intValue() != 0;
    }
};

StoredState::Open openFrom(Reader& reader) {
    StoredState::Open open;
    open.action = reader.text("Action");
    open.due = reader.number("Due");
    open.at = reader.number("At");
    open.weekday = static_cast<unsigned>(reader.number("Weekday", 0, 6));
    open.number = static_cast<unsigned>(reader.number("Number", 0, 1'000'000));
    open.by = reader.text("By");
    open.madeUp = reader.flag("Made Up");
    open.waitingSince = reader.number("Waiting Since");
    const auto step = std::find(kSteps.begin(), kSteps.end(), reader.text("Step"));
    if (step != kSteps.end()) open.step = static_cast<Step>(step - kSteps.begin());
    const std::string digest = reader.text("Digest");
    const auto read = std::from_chars(digest.data(), digest.data() + digest.size(), open.digest, 16);
    reader.good = reader.good && step != kSteps.end() && open.step != Step::kPlanned && read.ec == std::errc() &&
                  *read.ptr == '\0';
    return open;
}

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
    return {digits.begin(), end};
}

}  // namespace

std::string_view nameOf(Step step) {
    return kSteps[static_cast<std::size_t>(step)];
}

Value StoredState::value() const {
    Array opens;
    for (const Open& one : open) {
        opens.push_back(Dictionary{{"Action", one.action},
                                   {"Digest", hexadecimal(one.digest)},
                                   {"Due", one.due},
                                   {"At", one.at},
                                   {"Weekday", static_cast<int>(one.weekday)},
                                   {"Number", static_cast<int>(one.number)},
                                   {"Step", nameOf(one.step)},
                                   {"By", one.by},
                                   {"Made Up", one.madeUp},
                                   {"Waiting Since", one.waitingSince}});
    }
    return Dictionary{{"Version", kVersion}, {"Watermark", watermark},   {"Awake Until", awakeUntil}, {"Boot", bootId},
                      {"Slept", slept},      {"Open", std::move(opens)}, {"Outcomes", outcomes}};
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
