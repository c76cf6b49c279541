#include <algorithm>
#include <ctime>
#include <functional>
#include <optional>
#include <set>
#include <utility>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/FilePaths.h"
#include "ctl/Forecast.h"
#include "ctl/JsonOutput.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/Plan.h"
#include "ctl/ScheduleText.h"
#include "ctl/Selection.h"
#include "model/ActionParameters.h"
#include "model/Dictionary.h"
#include "model/Preferences.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "planning/ScheduleWords.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/WhenText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

Instant now() {
    return std::time(nullptr);
}

/// What the daemon tells beside the list; nothing where it does not run.
struct Told {
    Array pauses, faults;
};

Told toldNow() {
    DaemonClient daemon;
    return {askForList(daemon, wire::scheduler::kPauses).value.array(),
            daemon.ask(wire::scheduler::kStatus).value[keys::kFaults].array()};
}

/// " Next: today 23:15, in 5 h 31 min." Or why not.
std::string nextSentence(const Forecast& forecast, std::size_t index) {
    if (const auto next = forecast.next(index, now()))
        return " " + filled(translated("Next: {1}."), {comingText(*next, now())});
    const Value& fault = forecast.fault(index);
    return fault.isPresent() ? " " + filled(translated("But {1}."), {faultText(fault)}) : std::string();
}

/// The words of a command line, each in a column of its own counting.
std::vector<Word> wordsOfArguments(std::span<const std::string> arguments, const Plan& plan) {
    std::vector<Word> words;
    for (const std::string& argument : withNamesJoined(arguments, plan.actions()))
        words.push_back({argument, words.size() + 1});
    return words;
}

/// Who it runs as, where that is not the system.
std::string userSentence(const Value& schedule, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
    if (!description || description->program.empty() || description->isSystem) return {};
    return std::string(" ") + translated("It runs as who is at the computer then, and not when nobody is.");
}

/// Options that were named and count for nothing, since the flag is off on which they depend.
void tellIdleOptions(const Value& schedule, std::span<const Word> words, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
    if (!description) return;
    const Value own = description->completed(schedule[schedule_keys::kActionParameters]);
    for (const Word& word : words) {
        const std::string name = word.text.substr(0, word.text.find('='));
        const Option* option = ActionWords::optionOf(*description, name);
        if (!option || option->dependsOn.empty() || own[option->dependsOn].intValue() != 0) continue;
        complain(filled(translated("Note that {1} counts with {2}=yes only."), {name, typedName(option->dependsOn)}));
    }
}

/// A message without a text, or nothing to be opened.
void tellNothingToDo(const Value& schedule, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
    if (!description || std::ranges::none_of(description->options, &Option::takesWords)) return;
    const Value own = description->completed(schedule[schedule_keys::kActionParameters]);
    for (const Option& option : description->options)
        if (!own[option.key].text().empty()) return;
    complain(translated("Note that it has nothing to do yet: that is said behind \"--\"."));
}

/// The Schedule as words make it, fit to be stored; absent where it was refused, which has been said.
Value made(const Value& stored, std::span<const Word> words, const Plan& plan, ExitStatus& status) {
    std::vector<TextFault> faults;
    Value schedule = stored.isAbsent() ? scheduleOf(words, plan.actions(), faults)
                                       : changedSchedule(stored, words, plan.actions(), faults);
    const std::string& type = schedule[schedule_keys::kActionType].text();
    const bool isNewType = type != stored[schedule_keys::kActionType].text();
    const bool isJson = words.size() == 1 && words[0].text.starts_with('{');
    if (faults.empty() && isNewType && !isJson && !plan.actions().isKnown(type))
        faults.push_back({text_fault::kAction, type, plan.actions().names()});
    if (!faults.empty()) {
        status = refuseWords(faults);
        return {};
    }
    tellIdleOptions(schedule, words, plan.actions());
    if (const std::string reason = makePathsAbsolute(schedule, stored, plan.actions()); !reason.empty()) {
        complain(reason);
        status = ExitStatus::kUsage;
        return {};
    }
    const auto programOf = [](const Value& of) { return of[schedule_keys::kActionParameters][parameters::kProgram]; };
    const bool isOld = !isNewType && programOf(schedule) == programOf(stored);
    const auto fault = isOld ? std::nullopt : programFault(schedule, words, plan.actions());
    if (fault) {
        status = refuseWords({*fault});
        return {};
    }
    tellNothingToDo(schedule, plan.actions());
    return schedule;
}

/// Where one of those that were sent stands in the plan now, from 0: at its place, or else of those alike the same in
/// their row, or the last.
std::optional<std::size_t> placeOf(std::size_t index, const Array& sent, const Plan& plan) {
    const Array& all = plan.schedules();
    const std::string line = lineOf(sent[index], plan.actions());
    const auto isAlike = [&](const Value& one) { return one == sent[index] || lineOf(one, plan.actions()) == line; };
    if (index < all.size() && isAlike(all[index])) return index;
    auto before = std::count_if(sent.begin(), sent.begin() + static_cast<std::ptrdiff_t>(index), isAlike);
    std::optional<std::size_t> place;
    for (std::size_t i = 0; i < all.size() && before >= 0; ++i)
        if (isAlike(all[i])) place = i, --before;
    return place;
}

/// Stores the Schedules and tells of those at some places what they are now. `text`: "Added {1}: {2}."
ExitStatus store(const Plan& plan, const Array& schedules, const std::vector<std::size_t>& changed, const char* text,
                 const CommandLine& line, const std::function<std::string(const Value&)>& besides) {
    Array before;
    for (const std::size_t index : changed)
        if (index < plan.schedules().size()) before.push_back(lineOf(plan.schedules()[index], plan.actions()));
    if (const auto status = plan.saveSchedules(schedules); status != ExitStatus::kDone) return status;
    const Plan stored(line.root);
    const Told fromDaemon = toldNow();
    const Forecast forecast(stored.schedules(), stored.actions(), fromDaemon.pauses, fromDaemon.faults);
    const Page page;
    Array values;
    for (const std::size_t index : changed) {
        const Value& schedule = schedules[index];
        const auto place = placeOf(index, schedules, stored);
        if (!place) continue;  // changed again by somebody
        values.push_back(scheduleValue(schedule, *place, forecast, stored.actions(), now()));
        if (line.json) continue;
        page.line(filled(text, {std::to_string(*place + 1), summaryOf(schedule, stored.actions())}) +
                  nextSentence(forecast, *place) + besides(schedule));
    }
    Dictionary answer{{"Schedules", values}};
    if (!before.empty()) answer.set("Before", before);
    if (line.json) page.line(jsonOutput(answer));
    return ExitStatus::kDone;
}

ExitStatus switchSchedules(const CommandLine& line, bool on) {
    const Plan plan(line.root);
    ExitStatus status = ExitStatus::kDone;
    const auto chosen = chosenSchedules(plan, line.arguments, status);
    if (status != ExitStatus::kDone) return status;
    Array schedules = plan.schedules();
    const std::vector<Word> words = {{on ? "on" : "off", 1}};
    for (const std::size_t index : chosen) {
        std::vector<TextFault> faults;
        schedules[index] = changedSchedule(schedules[index], words, plan.actions(), faults);
    }
    return store(plan, schedules, chosen,
                 on ? translated("Switched on {1}: {2}.") : translated("Switched off {1}: {2}."), line,
                 [](const Value&) { return std::string(); });
}

}  // namespace

ExitStatus listPlan(const CommandLine& line) {
    if (!line.arguments.empty()) return misused(translated("Too many arguments."));
    const Plan plan(line.root);
    const Page page;
    const auto [pauses, faults] = toldNow();
    const Forecast forecast(plan.schedules(), plan.actions(), pauses, faults);
    if (plan.isUnreadable()) complain(translated("The plan in place cannot be read."));
    Array values;
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < plan.schedules().size(); ++i) {
        const Value& schedule = plan.schedules()[i];
        if (line.json) {
            values.push_back(scheduleValue(schedule, i, forecast, plan.actions(), now()));
            continue;
        }
        const auto next = forecast.next(i, now());
        const Value& fault = forecast.fault(i);
        const bool isOn = schedule[schedule_keys::kIsEnabled].intValue() != 0;
        const std::string detail = detailOf(schedule, plan.actions());
        const std::string when = next                ? whenText(*next, now())
                                 : fault.isPresent() ? translated("never")
                                                     : std::string(isOn ? "" : translated("switched off"));
        const std::string what = nameOfAction(schedule, plan.actions()) + (detail.empty() ? "" : ", " + detail);
        const std::string number = std::to_string(i + 1), days = daysText(daysOf(schedule));
        if (page.isNarrow())
            rows.insert(rows.end(), {{number, timeOf(schedule), days}, {what}, {when}});
        else
            rows.push_back({number, isOn ? translated("on") : translated("off"), timeOf(schedule), days, when, what});
        if (fault.isPresent()) rows.push_back({faultText(fault)});
    }
    if (line.json) {
        page.line(jsonOutput(Dictionary{{"Schedules", values}, {wire::scheduler::kPauses, pauses}}));
    } else if (rows.empty() && !plan.isUnreadable()) {
        page.line(translated("The plan is empty. \"quorelctl add sleep 23:15 mon-fri\" adds to it."));
    } else if (!rows.empty()) {
        page.table(std::move(rows));
    }
    if (!line.json)
        for (const std::string& one : pauseLines(pauses)) page.line(one);
    return ExitStatus::kDone;
}

ExitStatus addSchedule(const CommandLine& line) {
    const Plan plan(line.root);
    if (line.arguments.empty())
        return misused(filled(translated("What, and when? As \"quorelctl add sleep 23:15 mon-fri\". Actions are: {1}."),
                              {plan.actions().names()}));
    ExitStatus status = ExitStatus::kDone;
    Value schedule = made({}, wordsOfArguments(line.arguments, plan), plan, status);
    if (schedule.isAbsent()) return status;
    Array schedules = plan.schedules();
    schedules.push_back(std::move(schedule));
    const std::size_t last = schedules.size() - 1;
    return store(plan, schedules, {last}, translated("Added {1}: {2}."), line,
                 [&](const Value& added) { return userSentence(added, plan.actions()); });
}

ExitStatus setSchedule(const CommandLine& line) {
    const Plan plan(line.root);
    const auto& all = line.arguments;
    // "3 18:30", or "sleep 23:15 to 18:30".
    const auto to = std::ranges::find(all, "to");
    const bool isNamed = to != all.end() && to < std::ranges::find(all, "--");
    const auto count = isNamed ? to - all.begin() : std::ptrdiff_t{1};
    if (std::ssize(all) <= count + (isNamed ? 1 : 0))
        return misused(translated("Which one, and what of it? As \"quorelctl set 3 18:30 +sat\"."));
    ExitStatus status = ExitStatus::kDone;
    const auto chosen = chosenSchedules(plan, {all.begin(), all.begin() + count}, status);
    if (status != ExitStatus::kDone) return status;
    if (chosen.size() > 1) return misused(translated("One at a time, please."));
    Array schedules = plan.schedules();
    const std::size_t index = chosen.front();
    const std::string before = lineOf(schedules[index], plan.actions());
    const auto said = std::span(all).subspan(static_cast<std::size_t>(count + (isNamed ? 1 : 0)));
    const auto words = wordsOfArguments(said, plan);
    Value changed = made(schedules[index], words, plan, status);
    if (changed.isAbsent()) return status;
    schedules[index] = std::move(changed);
    return store(plan, schedules, {index}, translated("Changed {1}: {2}."), line,
                 [&](const Value&) { return " " + filled(translated("Before: {1}"), {before}); });
}

ExitStatus enableSchedules(const CommandLine& line) {
    return switchSchedules(line, true);
}

ExitStatus disableSchedules(const CommandLine& line) {
    return switchSchedules(line, false);
}

ExitStatus removeSchedules(const CommandLine& line) {
    const Plan plan(line.root);
    ExitStatus status = ExitStatus::kDone;
    const auto chosen = chosenSchedules(plan, line.arguments, status);
    if (status != ExitStatus::kDone) return status;
    const std::set<std::size_t> gone(chosen.begin(), chosen.end());
    Array left, lines;
    for (std::size_t i = 0; i < plan.schedules().size(); ++i) {
        if (!gone.contains(i)) left.push_back(plan.schedules()[i]);
        if (gone.contains(i)) lines.push_back(lineOf(plan.schedules()[i], plan.actions()));
    }
    status = plan.saveSchedules(std::move(left));
    if (status != ExitStatus::kDone) return status;
    const Page page;
    if (line.json) page.line(jsonOutput(Dictionary{{"Removed", lines}}));
    for (auto index = gone.begin(); !line.json && index != gone.end(); ++index)
        page.line(filled(translated("Removed {1}: {2}"),
                         {std::to_string(*index + 1), lineOf(plan.schedules()[*index], plan.actions())}));
    return ExitStatus::kDone;
}

}  // namespace quorel
