#include "ctl/Commands.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <utility>

#include "ctl/CheckModule.h"
#include "ctl/DaemonClient.h"
#include "ctl/Json.h"
#include "ctl/ModuleText.h"
#include "ctl/Page.h"
#include "ctl/StatusText.h"
#include "model/Dictionary.h"
#include "model/Names.h"
#include "model/PlainText.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;
using Colour = Page::Colour;

constexpr unsigned kUsualUpcoming = 5;
constexpr unsigned kUsualOutcomes = 10;
constexpr unsigned kInStatus = 10;

ExitStatus fail(const Answer& answer) {
    switch (answer.failure) {
        case Failure::kNoBus:
            complain(translated("The system bus cannot be reached."));
            return ExitStatus::kFailed;
        case Failure::kNotRunning:
            complain(translated("The daemon is not running. \"systemctl start quorel-daemon\" starts it."));
            return ExitStatus::kNotRunning;
        case Failure::kNoAnswer:
            complain(translated("The daemon does not answer."));
            return ExitStatus::kFailed;
        case Failure::kNotSent:
            complain(translated("This is no text that can be sent: it is not in UTF-8."));
            return ExitStatus::kUsage;
        case Failure::kNotUnderstood:
            complain(translated("The daemon's answer cannot be understood."));
            return ExitStatus::kFailed;
        default:
            break;
    }
    const bool isOther = answer.error == SD_BUS_ERROR_UNKNOWN_OBJECT ||
                         answer.error == SD_BUS_ERROR_UNKNOWN_INTERFACE || answer.error == SD_BUS_ERROR_UNKNOWN_METHOD;
    complain(isOther ? translated("The daemon that is running is of another version.")
                     : refusalText(answer.error, answer.text));
    return answer.error == wire::kNoSuchOccurrence ? ExitStatus::kNoSuchOccurrence : ExitStatus::kFailed;
}

/// The answer, made sure to be of the kind that is expected.
Answer askForArray(DaemonClient& daemon, const char* method, std::optional<unsigned> most = {}) {
    Answer answer = daemon.ask(method, most);
    if (answer.failure != Failure::kNone) return answer;
    bool understood = answer.value.isArray();
    for (const Value& one : answer.value.array()) understood = understood && one.isDictionary();
    if (!understood) answer.failure = Failure::kNotUnderstood;
    return answer;
}

ExitStatus showStatus(const Page& page, bool json) {
    DaemonClient daemon;
    const Answer status = daemon.ask(wire::scheduler::kStatus);
    if (status.failure == Failure::kNotRunning) {
        if (json) page.line(jsonText(Dictionary{{"Running", false}}));
        if (!json) page.headline(Colour::kNone, false, translated("quorel-daemon is not running"));
        return ExitStatus::kNotRunning;
    }
    if (status.failure != Failure::kNone) return fail(status);
    if (!status.value.isDictionary()) return fail({Failure::kNotUnderstood, {}, {}, {}});
    const Answer next = askForArray(daemon, wire::scheduler::kUpcoming, kInStatus);
    if (next.failure != Failure::kNone) return fail(next);
    const bool well = isWell(status.value);
    if (json) {
        page.line(jsonText(status.value.with("Running", true).with("Upcoming", next.value)));
    } else {
        page.headline(well ? Colour::kGood : Colour::kWarning, true,
                      filled(translated("quorel-daemon {1} is running"), {status.value["Version"].text()}));
        page.fields(statusFields(status.value, next.value.array()));
    }
    return well ? ExitStatus::kDone : ExitStatus::kNotWell;
}

ExitStatus showNext(const Page& page, bool json, unsigned most) {
    DaemonClient daemon;
    const Answer answer = askForArray(daemon, wire::scheduler::kUpcoming, most);
    if (answer.failure != Failure::kNone) return fail(answer);
    std::vector<std::vector<std::string>> rows;
    for (const Value& one : answer.value.array()) {
        rows.push_back({momentText(one["At"].integer()), actionName(one), one["Token"].text()});
        if (const std::string step = stepText(one); !step.empty()) rows.push_back({step});
    }
    if (json) {
        page.line(jsonText(answer.value));
    } else if (rows.empty()) {
        page.line(translated("Nothing is planned."));
    } else {
        page.table(rows);
    }
    return ExitStatus::kDone;
}

ExitStatus showLog(const Page& page, bool json, unsigned most) {
    DaemonClient daemon;
    const Answer answer = askForArray(daemon, wire::scheduler::kOutcomes, most);
    if (answer.failure != Failure::kNone) return fail(answer);
    std::vector<std::vector<std::string>> rows;
    for (const Value& one : answer.value.array()) {
        const std::int64_t due = one["Due"].integer();
        const bool hasAction = due != 0;
        rows.push_back({momentText(hasAction ? due : one["At"].integer()), hasAction ? actionName(one) : std::string(),
                        outcomeText(one)});
    }
    if (json) {
        page.line(jsonText(answer.value));
    } else if (rows.empty()) {
        page.line(translated("Nothing has happened yet."));
    } else {
        page.table(rows);
    }
    return ExitStatus::kDone;
}

ExitStatus showModules(const Page& page, bool json) {
    DaemonClient daemon;
    const Answer answer = askForArray(daemon, wire::scheduler::kModules);
    if (answer.failure != Failure::kNone) return fail(answer);
    std::vector<std::vector<std::string>> rows;
    for (const Value& one : answer.value.array())
        for (auto& row : moduleRows(one)) rows.push_back(std::move(row));
    if (json) {
        page.line(jsonText(answer.value));
    } else if (rows.empty()) {
        page.line(translated("There are no modules."));
    } else {
        page.table(rows);
    }
    return ExitStatus::kDone;
}

ExitStatus change(const char* method, const std::string& token) {
    const Answer answer = DaemonClient().change(method, token);
    return answer.failure == Failure::kNone ? ExitStatus::kDone : fail(answer);
}

/// A whole number from 1 to `most`.
std::optional<unsigned> numberIn(const std::string& text, unsigned most) {
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > most) return {};
    return number;
}

ExitStatus misused(const std::string& text) {
    complain(text + "\n" + translated("\"quorelctl --help\" tells what there is."));
    return ExitStatus::kUsage;
}

}  // namespace

void complain(const std::string& text) {
    std::fprintf(stderr, "quorelctl: %s\n", plainLines(text).c_str());
}

ExitStatus runCommand(const CommandLine& line) {
    const Page page;
    const std::string& command = line.command;
    const std::vector<std::string>& arguments = line.arguments;
    const bool lists = command == "next" || command == "log";
    const bool changes = command == "skip" || command == "postpone";
    if (!lists && !changes && command != "status" && command != "modules")
        return misused(filled(translated("There is no command \"{1}\"."), {command}));
    if (line.check && command != "modules") return misused(translated("Only \"modules\" checks."));
    if (arguments.size() > (lists || changes ? 1 : 0)) return misused(translated("Too many arguments."));
    if (changes) {
        if (arguments.empty() || arguments[0].empty())
            return misused(translated("Which one? Give its token, as \"quorelctl next\" shows it."));
        return change(command == "skip" ? wire::scheduler::kSkip : wire::scheduler::kPostpone, arguments[0]);
    }
    if (line.check) return checkModule(page, *line.check, line.json);
    if (command == "modules") return showModules(page, line.json);
    if (!lists) return showStatus(page, line.json);
    const bool next = command == "next";
    const unsigned most = next ? wire::scheduler::kMostUpcoming : wire::scheduler::kMostOutcomes;
    const std::optional<unsigned> number =
        arguments.empty() ? (next ? kUsualUpcoming : kUsualOutcomes) : numberIn(arguments[0], most);
    if (!number) {
        return misused(filled(translated("A number from 1 to {1}, please."), {std::to_string(most)}));
    }
    return next ? showNext(page, line.json, *number) : showLog(page, line.json, *number);
}

}  // namespace quorel
