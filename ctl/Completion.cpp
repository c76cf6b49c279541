#include <algorithm>
#include <cstdio>

#include "ctl/Commands.h"
#include "ctl/Plan.h"
#include "model/Schedule.h"

namespace quorel {

namespace {

using Words = std::vector<std::string>;

/// The actions, days and options that may stand in a Schedule's words, given those that stand there already.
Words scheduleWords(const Plan& plan, const Words& before) {
    Words words = {"on", "off", "daily", "weekdays", "weekend", "mon-fri", "sat,sun"};
    const ActionDescription* description = nullptr;
    const std::string all = plan.actions().names();
    for (std::size_t begin = 0; begin < all.size();) {
        const std::size_t end = std::min(all.find(", ", begin), all.size());
        words.push_back(all.substr(begin, end - begin));
        begin = end + 2;
    }
    for (const std::string& word : before)
        if (const auto type = plan.actions().typeOf(word)) description = plan.actions().description(*type);
    for (const char* flag : {"wake-up", "start-up"})
        for (const char* value : {"=yes", "=no"}) words.push_back(std::string(flag) + value);
    if (!description) return words;
    for (const Option& option : description->options) {
        const std::string name = ActionWords::optionWord(*description, option);
        Words values;
        for (const Choice& choice : option.choices) values.push_back(choice.value);
        if (option.kind == OptionKind::kFlag) values = {"yes", "no"};
        if (values.empty()) values.emplace_back();
        for (const std::string& value : values)
            if (!name.empty()) words.push_back(name + "=" + value);
    }
    return words;
}

Words candidates(const CommandLine& line) {
    Words words = {"--json"};
    const auto& typed = line.arguments;
    const auto isCommand = [](const std::string& word) { return !word.starts_with('-'); };
    const auto name = std::find_if(typed.begin(), typed.end() - 1, isCommand);
    if (name == typed.end() - 1) {
        for (const Command& command : commands()) words.emplace_back(command.name);
        words.insert(words.end(), {"help", "--help", "--version"});
        return words;
    }
    if (*name == "help")
        for (const Command& command : commands()) words.emplace_back(command.name);
    const Command* command = commandNamed(*name);
    if (!command) return words;
    const std::string_view takes = command->takes;
    const Words before(name + 1, typed.end() - 1);
    if (*command->flag) words.emplace_back(command->flag);
    if (takes == "f") words.emplace_back("/files");  // the shell knows them
    if (takes == "p") words.insert(words.end(), {"until", "tomorrow", "mon", "tue", "wed", "thu", "fri", "sat", "sun"});
    if (takes == "r") words.emplace_back("all");
    if (takes != "w" && !takes.starts_with('n')) return words;
    const Plan plan(line.root);
    const bool isNumber = takes[0] == 'n' && (takes == "n" || before.empty());
    for (std::size_t i = 1; isNumber && i <= plan.schedules().size(); ++i) words.push_back(std::to_string(i));
    if (isNumber) return words;
    Words context = before;
    if (takes[0] == 'n')
        for (std::size_t i = 1; i <= plan.schedules().size(); ++i)
            if (std::to_string(i) == before.front())
                context.push_back(plan.actions().nameOf(plan.schedules()[i - 1][schedule_keys::kActionType].text()));
    const Words own = scheduleWords(plan, context);
    words.insert(words.end(), own.begin(), own.end());
    return words;
}

}  // namespace

ExitStatus complete(const CommandLine& line) {
    if (line.arguments.empty()) return ExitStatus::kUsage;
    for (const std::string& word : candidates(line))
        if (word == "/files" || word.starts_with(line.arguments.back())) std::printf("%s\n", word.c_str());
    return ExitStatus::kDone;
}

}  // namespace quorel
