#include "planning/PlanText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "model/ActionParameters.h"
#include "model/Preferences.h"
#include "model/Schedule.h"
#include "planning/ScheduleWords.h"
#include "planning/ShellWords.h"

namespace quorel {

namespace {

constexpr std::string_view kOptions = "options";
constexpr std::size_t kAligned = 3;  // time, days and action

/// What an option's numbers are called; others are written as numbers.
constexpr struct {
    std::string_view key;
    std::array<std::string_view, 3> words;
} kNamed[] = {{preferences::kCheckUpdates, {"no", "yes"}},
              {preferences::kCheckUpdatesFrequency, {"daily", "weekly", "monthly"}},
              {preferences::kShowInMenuBar, {"no", "yes"}},
              {preferences::kEnableNetworkAdministration, {"no", "yes"}}};
using Named = std::remove_reference_t<decltype(kNamed[0])>;

std::string wordOf(const Named& option, std::int64_t number) {
    const auto index = static_cast<std::size_t>(number);
    const bool isNamed = number >= 0 && index < option.words.size() && !option.words[index].empty();
    return isNamed ? std::string(option.words[index]) : std::to_string(number);
}

std::optional<std::int32_t> numberOf(const Named& option, std::string_view word) {
    const auto named = std::ranges::find(option.words, word);
    if (!word.empty() && named != option.words.end()) return static_cast<std::int32_t>(named - option.words.begin());
    std::int32_t number = 0;
    const char* end = word.data() + word.size();
    const bool isNumber = std::from_chars(word.data(), end, number) == std::from_chars_result{end, std::errc()};
    return isNumber ? std::optional(number) : std::nullopt;
}

std::string optionsLine(const Value& preferences) {
    std::string line(kOptions);
    for (const Named& option : kNamed) {
        line.append(" ").append(typedName(option.key)).append("=");
        line.append(wordOf(option, preferences[option.key].integer()));
    }
    return line;
}

/// Takes what the words name over into the preferences.
void readOptions(std::span<const Word> words, Value& preferences, std::vector<TextFault>& faults) {
    for (const Word& word : words) {
        const std::size_t equals = std::min(word.text.find('='), word.text.size());
        const std::string_view name = std::string_view(word.text).substr(0, equals);
        const auto* option = std::ranges::find(kNamed, name, [](const Named& one) { return typedName(one.key); });
        std::string allowed;
        if (option == std::end(kNamed)) {
            for (const Named& one : kNamed) allowed.append(allowed.empty() ? "" : ", ").append(typedName(one.key));
            faults.push_back({text_fault::kOption, word.text, std::move(allowed), word.column});
            continue;
        }
        const auto number =
            numberOf(*option, std::string_view(word.text).substr(std::min(equals + 1, word.text.size())));
        for (const std::string_view one : option->words)
            if (!one.empty()) allowed.append(allowed.empty() ? "" : ", ").append(one);
        if (!number) faults.push_back({text_fault::kValue, word.text, std::move(allowed), word.column});
        if (number) preferences = preferences.with(option->key, *number);
    }
}

/// The Schedules of a plan by their lines, each to be taken once.
class Stored {
public:
    Stored(const Value& preferences, const ActionWords& actions) : _actions(actions) {
        for (const Value& schedule : preferences[preferences::kScheduleArray].array())
            _left[lineOf(schedule, actions)].push_back(schedule), _programs.insert(programOf(schedule));
    }
    bool hasProgramOf(const Value& schedule) const { return _programs.contains(programOf(schedule)); }
    /// Nothing where there is none, or no more.
    std::optional<Value> like(const Value& schedule) {
        auto& left = _left[lineOf(schedule, _actions)];
        if (left.empty()) return {};
        Value stored = std::move(left.front());
        left.pop_front();
        return stored;
    }

private:
    static std::string programOf(const Value& schedule) {
        const Value& own = schedule[schedule_keys::kActionParameters];
        return schedule[schedule_keys::kActionType].text() + '\n' + own[parameters::kProgram].text();
    }

    const ActionWords& _actions;
    std::map<std::string, std::deque<Value>> _left;
    std::set<std::string> _programs;
};

std::vector<std::string> linesOf(const Value& preferences, const ActionWords& actions) {
    std::vector<std::string> lines = {optionsLine(preferences)};
    for (const Value& one : preferences[preferences::kScheduleArray].array()) lines.push_back(lineOf(one, actions));
    return lines;
}

/// Those of `lines` that `others` does not have, or not as often; the rest goes to `common`.
std::vector<std::string> missing(const std::vector<std::string>& lines, const std::vector<std::string>& others,
                                 std::vector<std::string>& common) {
    std::map<std::string_view, int> left;
    std::vector<std::string> result;
    for (const std::string& line : others) ++left[line];
    for (const std::string& line : lines) (left[line]-- > 0 ? common : result).push_back(line);
    return result;
}

}  // namespace

std::string planText(const Value& preferences, const ActionWords& actions) {
    std::vector<std::vector<std::string>> rows;
    std::array<std::size_t, kAligned> widths{};
    for (const Value& schedule : preferences[preferences::kScheduleArray].array()) {
        auto& row = rows.emplace_back(wordsOf(schedule, actions));
        for (std::string& word : row) word = shellWord(word);
        for (std::size_t i = 0; row.size() > 1 && i < kAligned; ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text = optionsLine(preferences) + "\n";
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool isAligned = i < kAligned && i + 1 < row.size();
            text += row[i];
            text.append(isAligned ? widths[i] - row[i].size() + 2 : i + 1 < row.size() ? 1 : 0, ' ');
        }
        text += '\n';
    }
    return text;
}

PlanReading readPlanText(std::string_view text, const Value& preferences, const ActionWords& actions) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    PlanReading result{preferences, {}, {}};
    Stored stored(preferences, actions);
    Array schedules;
    bool isEmpty = true;
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const SplitLine line = splitLine(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t before = result.faults.size();
        isEmpty = isEmpty && line.words.empty();
        if (line.unclosed > 0) {
            result.faults.push_back({text_fault::kQuote, {}, {}, line.unclosed});
        } else if (!line.words.empty() && line.words[0].text == kOptions) {
            readOptions(std::span(line.words).subspan(1), result.preferences, result.faults);
        } else if (!line.words.empty()) {
            const Value schedule = scheduleOf(line.words, actions, result.faults);
            const auto same = stored.like(schedule);
            const bool isOld = same || schedule.isAbsent() || stored.hasProgramOf(schedule);
            auto remark = isOld ? std::nullopt : programFault(schedule, line.words, actions);
            if (remark) remark->line = number;
            if (remark) result.remarks.push_back(std::move(*remark));
            if (schedule.isPresent()) schedules.push_back(same.value_or(schedule));
        }
        for (std::size_t i = before; i < result.faults.size(); ++i) result.faults[i].line = number;
    }
    result.preferences = result.preferences.with(preferences::kScheduleArray, std::move(schedules));
    if (isEmpty && result.faults.empty()) result.faults.push_back({text_fault::kEmpty, {}, {}});
    if (!result.faults.empty()) result.preferences = {};
    return result;
}

PlanChanges changesBetween(const Value& before, const Value& after, const ActionWords& actions) {
    const auto old = linesOf(before, actions), now = linesOf(after, actions);
    std::vector<std::string> kept, keptNow;
    PlanChanges changes{missing(old, now, kept), missing(now, old, keptNow)};
    changes.isReordered = kept != keptNow;
    return changes;
}

}  // namespace quorel
