// quorelctl: the plan, what becomes of it, and a way to say no.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

#include "ProductVersion.h"
#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/Page.h"
#include "kit/MOLLog.h"
#include "words/Language.h"

namespace quorel {

namespace {

constexpr int status(ExitStatus exit) {
    return static_cast<int>(exit);
}

const char* noJson() {
    return translated("This does not answer in JSON; \"list --json\" has the plan.");
}

/// Of all commands, or of one.
ExitStatus help(const CommandLine& line, const std::string& name) {
    if (line.json) return misused(noJson());
    if (!name.empty() && !commandNamed(name))
        return misused(filled(translated("There is no command \"{1}\"."), {name}));
    const Page page;
    const auto sayOfAll = [&](const char* text) {
        if (name.empty()) page.paragraph(text);
    };
    for (const char* text : {translated("Usage: quorelctl [--json] [COMMAND] [WORDS...]"), "",
                             translated("Shows and changes what this computer does by itself, and when."), "",
                             translated("Commands:"), ""})
        sayOfAll(text);
    std::vector<std::vector<std::string>> rows;
    for (const Command& command : commands()) {
        if (!name.empty() && name != command.name) continue;
        const std::string usage = std::string(command.name) + (*command.arguments ? " " : "") + command.arguments;
        rows.push_back({"  " + usage, translated(command.does)});
        if (!page.isNarrow()) continue;
        page.paragraph(usage);
        page.table({{" ", translated(command.does)}});
    }
    if (!page.isNarrow()) page.table(std::move(rows));
    for (const char* text :
         {"", translated("N is the number in \"quorelctl list\", or time and action: remove sleep 23:15."),
          translated("\"man quorelctl\" explains the words, --json, and what the program ends with.")})
        sayOfAll(text);
    return ExitStatus::kDone;
}

/// Whether it is the command's own flag, perhaps with an argument.
bool takeFlag(CommandLine& line, const std::string& word) {
    const Command* command = commandNamed(line.command);
    const std::string flag = command ? command->flag : "";
    if (flag.empty() || (word != flag && !word.starts_with(flag + "="))) return false;
    line.isFlagged = true;
    if (word != flag) line.arguments.push_back(word.substr(flag.size() + 1));
    return true;
}

/// Takes one word of the command line; false where it is an option that does not exist.
bool take(CommandLine& line, const std::string& word) {
    constexpr std::string_view kRoot = "--root=";
    if (takeFlag(line, word)) return true;
    if (word == "--json")
        line.json = true;
    else if (word.starts_with(kRoot))
        line.root = word.substr(kRoot.size());
    else if (word.starts_with("--"))
        return false;
    else if (line.command.empty())
        line.command = word;
    else
        line.arguments.push_back(word);
    return true;
}

ExitStatus run(const std::vector<std::string>& words) {
    CommandLine line;
    for (auto word = words.begin(); word != words.end(); ++word) {
        const bool isRest = *word == "--" || line.command == "complete";
        if (isRest) {
            line.arguments.insert(line.arguments.end(), word, words.end());
            break;
        }
        if (*word == "--help" || *word == "-h") return help(line, line.command);
        if (*word == "--version") {
            std::printf("quorelctl %s\n", product::kVersion);
            return ExitStatus::kDone;
        }
        if (!take(line, *word)) return misused(filled(translated("There is no option \"{1}\"."), {*word}));
    }
    if (line.root.empty()) unsetenv("TZ");  // the plan goes by the computer's zone, as the daemon does
    if (line.command == "help") return help(line, line.arguments.empty() ? "" : line.arguments[0]);
    if (line.command == "complete") return complete(line);
    if (line.command.empty()) line.command = "status";
    const Command* command = commandNamed(line.command);
    if (!command) return misused(filled(translated("There is no command \"{1}\"."), {line.command}));
    if (line.json && !command->answersInJson) return misused(noJson());
    return command->run(line);
}

}  // namespace

}  // namespace quorel

int main(int count, char** arguments) try {
    quorel::speakUsersLanguage();
    quorel::setMOLLogSink([](std::string_view) {});  // what is wrong with modules "quorelctl modules" tells
    const quorel::ExitStatus exit = quorel::run({arguments + 1, arguments + count});
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return quorel::status(exit);
    return quorel::status(quorel::ExitStatus::kFailed);  // nobody could read it all
} catch (const std::exception& exception) {
    quorel::complain(exception.what());
    return EXIT_FAILURE;
}
