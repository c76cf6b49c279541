#include "ctl/Selection.h"

#include <algorithm>
#include <charconv>

#include "ctl/Failures.h"
#include "ctl/ScheduleText.h"
#include "model/Schedule.h"
#include "model/TimeOfDay.h"
#include "planning/ScheduleWords.h"
#include "planning/TimeWords.h"
#include "words/Language.h"

namespace quorel {

namespace {

bool isNumber(const std::string& text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

ExitStatus noSuch(const std::string& number, std::size_t count) {
    if (count == 0) return notFound(translated("The plan is empty."));
    return notFound(filled(translated("There is no schedule {1}: the plan has {2}."), {number, std::to_string(count)}));
}

/// Whether the Schedule is what all the words say; nothing where one of them is no time, action or days.
std::optional<bool> isMeant(const Value& schedule, const std::vector<std::string>& words, const ActionWords& actions) {
    bool isMeant = true;
    for (const std::string& word : words) {
        const auto minute = minuteOfWord(word);
        const auto days = daysOfWord(word);
        const auto type = actions.typeOf(word);
        if (!minute && !days && !type) return {};
        if (minute) isMeant = isMeant && timeOf(schedule) == timeOfDay(*minute);
        if (!minute && days) isMeant = isMeant && daysOf(schedule) == *days;
        if (!minute && !days) isMeant = isMeant && schedule[schedule_keys::kActionType].text() == *type;
    }
    return isMeant;
}

std::vector<std::size_t> byWords(const Plan& plan, const std::vector<std::string>& words, ExitStatus& status) {
    std::vector<std::size_t> found;
    std::string lines;
    for (std::size_t i = 0; i < plan.schedules().size(); ++i) {
        const auto meant = isMeant(plan.schedules()[i], words, plan.actions());
        if (!meant.value_or(false)) continue;
        found.push_back(i);
        lines += "\n  " + std::to_string(i + 1) + "  " + lineOf(plan.schedules()[i], plan.actions());
    }
    if (!isMeant({}, words, plan.actions()))
        status = misused(translated("Which one? Give its number in \"quorelctl list\", or time and action."));
    else if (found.empty())
        status = notFound(translated("There is no such schedule."));
    else if (found.size() > 1)
        status = notFound(translated("Several are so; give the number:") + lines);
    return found;
}

}  // namespace

std::optional<unsigned> numberIn(const std::string& text, std::size_t most) {
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > most) return {};
    return number;
}

std::vector<std::string> withNamesJoined(std::span<const std::string> arguments, const ActionWords& actions) {
    std::vector<std::string> joined;
    for (auto word = arguments.begin(); word != arguments.end(); ++word) {
        if (*word == "--") {
            joined.insert(joined.end(), word, arguments.end());
            break;
        }
        const bool isHalf = !joined.empty() && isTime(joined.back(), *word);
        const bool isName = !joined.empty() && actions.isName(joined.back(), *word);
        if (isHalf || isName)
            joined.back().append(isName ? "-" : "").append(*word);
        else
            joined.push_back(*word);
    }
    return joined;
}

std::vector<std::size_t> chosenSchedules(const Plan& plan, const std::vector<std::string>& arguments,
                                         ExitStatus& status) {
    if (arguments.empty())
        status = misused(translated("Which one? Give its number in \"quorelctl list\", or time and action."));
    if (arguments.empty() || !std::ranges::all_of(arguments, isNumber))
        return arguments.empty() ? std::vector<std::size_t>()
                                 : byWords(plan, withNamesJoined(arguments, plan.actions()), status);
    std::vector<std::size_t> chosen;
    for (const std::string& argument : arguments) {
        const auto number = numberIn(argument, plan.schedules().size());
        if (!number) {
            status = noSuch(argument, plan.schedules().size());
            return {};
        }
        if (std::ranges::find(chosen, *number - 1) == chosen.end()) chosen.push_back(*number - 1);
    }
    return chosen;
}

}  // namespace quorel
