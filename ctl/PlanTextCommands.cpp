#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/Page.h"
#include "ctl/Plan.h"
#include "ctl/ScheduleText.h"
#include "model/Preferences.h"
#include "model/PropertyList.h"
#include "model/Schedule.h"
#include "planning/PlanText.h"
#include "planning/ScheduleWords.h"
#include "words/Language.h"

namespace quorel {

namespace {

constexpr std::string_view kMark = "#! ";  // begins a line that says what is wrong with the one above it

struct Contents {
    std::string text;
    std::string fault;  ///< why that is not all of it; empty: it is
};

Contents contentsOf(const std::string& path) {
    const auto close = [](std::FILE* file) { file == stdin ? 0 : std::fclose(file); };
    const std::unique_ptr<std::FILE, decltype(close)> file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
    if (!file) return {{}, std::strerror(errno)};
    Contents contents;
    std::array<char, 65536> piece{};
    while (contents.text.size() <= kMaximumPropertyListBytes) {
        const std::size_t size = std::fread(piece.data(), 1, piece.size(), file.get());
        if (size == 0 && std::ferror(file.get()) != 0) contents.fault = std::strerror(errno);
        if (size == 0) return contents;
        contents.text.append(piece.data(), size);
    }
    contents.fault = filled(translated("it is larger than {1} MiB"), {std::to_string(kMaximumPropertyListBytes >> 20)});
    return contents;
}

ExitStatus unread(const std::string& path, const Contents& contents) {
    complain(filled(translated("\"{1}\" cannot be read: {2}."), {path, contents.fault}));
    return ExitStatus::kFailed;
}

ExitStatus unwritten(const std::string& path) {
    complain(filled(translated("\"{1}\" cannot be written."), {path}));
    return ExitStatus::kFailed;
}

/// Says of Schedules that nothing here carries out that they will not run.
void tellUnknown(const Value& preferences, const ActionWords& actions) {
    for (const Value& one : preferences[preferences::kScheduleArray].array())
        if (!actions.isKnown(one[schedule_keys::kActionType].text()))
            complain(filled(translated("There is no such action on this computer, it never runs: {1}"),
                            {lineOf(one, actions)}));
}

/// Stores it, unless it is only to be told, and tells what has changed.
ExitStatus take(const Plan& plan, const Value& preferences, const CommandLine& line) {
    const PlanChanges changes = changesBetween(plan.preferences(), preferences, plan.actions());
    tellUnknown(preferences, plan.actions());
    if (!line.isFlagged && preferences != plan.preferences()) {
        const ExitStatus status = plan.save(preferences);
        if (status != ExitStatus::kDone) return status;
    }
    const Page page;
    if (line.json) {
        page.line(jsonOutput(Dictionary{{"Changed", !changes.isNone()},
                                        {"Stored", !line.isFlagged && !changes.isNone()},
                                        {"Removed", Array(changes.removed.begin(), changes.removed.end())},
                                        {"Added", Array(changes.added.begin(), changes.added.end())},
                                        {"Reordered", changes.isReordered}}));
        return ExitStatus::kDone;
    }
    for (const std::string& removed : changes.removed) page.line("- " + removed);
    for (const std::string& added : changes.added) page.line("+ " + added);
    if (changes.isReordered) page.line(translated("The order changes."));
    if (changes.isNone()) page.line(translated("Nothing changes."));
    if (!changes.isNone()) page.line(line.isFlagged ? translated("Nothing is stored.") : translated("Stored."));
    return ExitStatus::kDone;
}

/// A file that is the editor's, removed with this unless it is to be kept.
class Draft {
public:
    Draft() {
        const char* folder = std::getenv("TMPDIR");
        _path = std::string(folder && *folder ? folder : "/tmp") + "/quorel-plan-XXXXXX.txt";
        const int file = mkstemps(_path.data(), 4);
        _isMade = file >= 0;
        if (_isMade) close(file);
    }
    ~Draft() {
        if (_isMade && !_isKept) unlink(_path.c_str());
    }
    Draft(const Draft&) = delete;

    const std::string& path() const { return _path; }
    bool write(const std::string& text) const {
        if (!_isMade) return false;
        std::ofstream file(_path, std::ios::binary | std::ios::trunc);
        file << text;
        return static_cast<bool>(file.flush());
    }
    /// What is there stays where that fails.
    bool replace(const std::string& text) const {
        const Draft next;
        return next.write(text) && std::rename(next._path.c_str(), _path.c_str()) == 0;
    }
    /// Says where it is: what somebody has typed is not thrown away.
    void keep() {
        _isKept = access(_path.c_str(), F_OK) == 0;
        if (!_isKept) return;
        complain(filled(translated("The text is kept in {1}."), {_path}));
    }

private:
    std::string _path;
    bool _isMade = false;
    bool _isKept = false;
};

/// False where the editor could not be run, or says that it failed. Ctrl-C there is the editor's.
bool openEditor(const std::string& path) {
    const char* editor = std::getenv("VISUAL");
    if (!editor || !*editor) editor = std::getenv("EDITOR");
    if (!editor || !*editor) editor = "sensible-editor";
    std::fflush(stdout);
    const auto onInterrupt = std::signal(SIGINT, SIG_IGN), onQuit = std::signal(SIGQUIT, SIG_IGN);
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGINT, onInterrupt);
        std::signal(SIGQUIT, onQuit);
        const std::string command = std::string(editor) + " \"$1\"";  // it may bring words of its own
        execl("/bin/sh", "sh", "-c", command.c_str(), "sh", path.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    const bool hasEnded = child > 0 && waitpid(child, &status, 0) == child;
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGQUIT, onQuit);
    return hasEnded && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The text with what is wrong below each line that is refused, and without what was said there before.
/// What somebody has just typed can be mended at once.
std::vector<TextFault> faultsAndRemarks(const PlanReading& reading) {
    std::vector<TextFault> all = reading.faults;
    all.insert(all.end(), reading.remarks.begin(), reading.remarks.end());
    std::ranges::stable_sort(all, {}, &TextFault::line);
    return all;
}

std::string markedText(const std::string& text, const std::vector<TextFault>& faults) {
    std::string result;
    std::size_t number = 0;
    auto fault = faults.begin();
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        begin = end + 1;
        ++number;
        if (!line.starts_with(kMark)) result += line + "\n";
        for (; fault != faults.end() && fault->line == number; ++fault)
            result.append(kMark)
                .append(std::string(fault->column > kMark.size() ? fault->column - kMark.size() - 1 : 0, ' '))
                .append("^ ") += sentenceOf(*fault) + "\n";
    }
    return result;
}

bool wantsToMend() {
    if (isatty(STDIN_FILENO) == 0) return false;
    std::fprintf(stderr, "%s ", translated("Edit again? [Y/n]"));
    std::string answer;
    return std::getline(std::cin, answer) &&
           (answer.empty() || answer[0] == 'y' || answer[0] == 'Y' || answer[0] == 'o' || answer[0] == 'O');
}

std::string introduction() {
    return std::string("# ") + translated("The plan: a line a schedule. \"man quorelctl\" explains the words.") + "\n";
}

}  // namespace

ExitStatus exportPlan(const CommandLine& line) {
    if (line.arguments.size() > 1) return misused(translated("Too many arguments."));
    const Plan plan(line.root);
    if (plan.isUnreadable()) {
        complain(translated("The plan in place cannot be read."));
        return ExitStatus::kFailed;
    }
    const std::string text = planText(plan.preferences(), plan.actions());
    if (line.arguments.empty() || line.arguments[0] == "-")
        return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? ExitStatus::kDone
                                                                               : ExitStatus::kFailed;
    std::ofstream file(line.arguments[0], std::ios::binary | std::ios::trunc);
    file << text;
    return file.flush() ? ExitStatus::kDone : unwritten(line.arguments[0]);
}

ExitStatus importPlan(const CommandLine& line) {
    if (line.arguments.size() != 1) return misused(translated("Which file? \"-\" is the standard input."));
    const std::string& path = line.arguments[0];
    const Contents contents = contentsOf(path);
    if (!contents.fault.empty()) return unread(path, contents);
    const Plan plan(line.root);
    const PlanReading reading = readPlanText(contents.text, plan.preferences(), plan.actions());
    if (!reading.faults.empty()) {
        const ExitStatus status = refuseWords(reading.faults, path);
        complain(translated("Nothing is stored."));
        return status;
    }
    refuseWords(reading.remarks, path);  // told, but taken: whoever has exported them has them
    return take(plan, reading.preferences, line);
}

ExitStatus editPlan(const CommandLine& line) {
    if (!line.arguments.empty()) return misused(translated("Too many arguments."));
    const Plan plan(line.root);
    Draft draft;
    const std::string before = introduction() + planText(plan.preferences(), plan.actions());
    if (!draft.write(before)) return unwritten(draft.path());
    while (true) {
        const bool isEdited = openEditor(draft.path());
        const Contents contents = contentsOf(draft.path());
        if (!isEdited || !contents.fault.empty()) {
            if (!isEdited) complain(translated("The editor has failed; nothing is stored."));
            if (isEdited) unread(draft.path(), contents);
            if (contents.text != before) draft.keep();
            return ExitStatus::kFailed;
        }
        const PlanReading reading = readPlanText(contents.text, plan.preferences(), plan.actions());
        const std::vector<TextFault> faults = faultsAndRemarks(reading);
        if (faults.empty()) {
            const ExitStatus status = take(plan, reading.preferences, line);
            if (status != ExitStatus::kDone) draft.keep();
            return status;
        }
        refuseWords(faults, draft.path());
        const bool isEmpty = faults.front().code == text_fault::kEmpty;
        const bool isMarked = !isEmpty && draft.replace(markedText(contents.text, faults));
        if (isMarked && wantsToMend()) continue;
        complain(translated("Nothing is stored."));
        if (!isEmpty) draft.keep();
        return ExitStatus::kUsage;
    }
}

}  // namespace quorel
