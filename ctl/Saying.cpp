// Saying no, later, and what else is said of single occurrences.

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iostream>
#include <optional>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/Plan.h"
#include "ctl/ScheduleText.h"
#include "ctl/Selection.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "planning/TimeWords.h"
#include "scheduler/Instant.h"
#include "scheduler/Rules.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/WhenText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;

constexpr std::size_t kMany = 1'000'000;

/// "1795717800-3cc6a934d9652847"
bool isToken(const std::string& text) {
    const std::size_t digits = text.find_first_not_of("0123456789");
    return digits != 0 && digits != std::string::npos && text[digits] == '-';
}

/// Its token, the number of its Schedule, or nothing for the next one of all.
std::string nameOf(const CommandLine& line, const Plan& plan, ExitStatus& status) {
    if (line.arguments.empty()) return {};
    if (line.arguments.size() == 1 && isToken(line.arguments[0])) return line.arguments[0];
    const auto chosen = chosenSchedules(plan, line.arguments, status);
    if (status != ExitStatus::kDone) return {};
    if (chosen.size() > 1) status = misused(translated("One at a time, please."));
    return std::to_string(chosen.front() + 1);
}

/// Why nothing that can be skipped or postponed goes by that name.
ExitStatus noneOf(const std::string& name, const Plan& plan) {
    if (name.empty()) return notFound(translated("Nothing is planned."));
    const auto number = numberIn(name, plan.schedules().size());
    if (number && plan.schedules()[*number - 1][schedule_keys::kIsEnabled].intValue() == 0)
        return notFound(filled(translated("{1} is switched off."), {name}));
    return notFound(translated("There is no such occurrence. \"quorelctl next\" shows what there is."));
}

/// Calls a method about the occurrence that the arguments name. `said` makes the line that tells of it.
ExitStatus sayOf(const CommandLine& line, const char* method,
                 const std::function<std::string(const Occurrences& before, const Value& one)>& said,
                 std::optional<Seconds> length = {}) {
    DaemonClient daemon;
    const bool undoes = method == std::string_view(wire::scheduler::kUnskip);
    const Occurrences before(line.root, daemon, wire::scheduler::kMostUpcoming);
    if (before.answer().failure != Failure::kNone) return fail(before.answer());
    ExitStatus status = ExitStatus::kDone;
    const std::string name = nameOf(line, before.plan(), status);
    if (status != ExitStatus::kDone) return status;
    const Value one = before.meant(name, undoes);
    if (one.isAbsent())
        return undoes ? notFound(translated("Nothing of the kind was skipped.")) : noneOf(name, before.plan());
    const Answer answer = daemon.change(method, one[keys::kToken].text(), length);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    if (line.json) page.line(jsonOutput(one.dictionary()));
    if (!line.json) page.line(one[keys::kDue].isPresent() ? said(before, one) : translated("Done."));
    return ExitStatus::kDone;
}

/// Until when it was postponed by so much, as the daemon tells now where it is not too far ahead.
Instant newTimeOf(const Value& postponed, Seconds by, const std::string& root) {
    DaemonClient daemon;
    const Occurrences now(root, daemon, wire::scheduler::kMostUpcoming);
    for (const Value& one : now.upcoming())
        if (one[keys::kDue] == postponed[keys::kDue] && one[keys::kNumber] == postponed[keys::kNumber])
            return one[keys::kAt].integer();
    return postponed[keys::kAt].integer() + by;
}

/// Also behind sudo, which keeps the variable to itself.
bool isRemote() {
    char* session = nullptr;
    if (std::getenv("SSH_CONNECTION")) return true;
    const bool isRemote = sd_pid_get_session(0, &session) >= 0 && sd_session_is_remote(session) > 0;
    std::free(session);
    return isRemote;
}

bool agreed() {
    if (isatty(STDIN_FILENO) == 0) return false;
    std::fprintf(stderr, "%s ", translated("This ends a remote session. Go on? [y/N]"));
    std::string answer;
    return std::getline(std::cin, answer) && (answer == "y" || answer == "Y" || answer == "o" || answer == "O");
}

}  // namespace

ExitStatus skip(const CommandLine& line) {
    return sayOf(line, wire::scheduler::kSkip, [](const Occurrences& before, const Value& one) {
        const Instant due = one[keys::kDue].integer();
        return filled(translated("Skipped: {1}, {2}."), {actionName(one), whenText(due, std::time(nullptr))}) +
               before.nextSentence(one[keys::kNumber].integer(), due);
    });
}

ExitStatus unskip(const CommandLine& line) {
    return sayOf(line, wire::scheduler::kUnskip, [](const Occurrences&, const Value& one) {
        const Instant due = one[keys::kDue].integer();
        return filled(translated("Planned again: {1}, {2}."), {actionName(one), comingText(due, std::time(nullptr))});
    });
}

ExitStatus postpone(const CommandLine& line) {
    CommandLine named = line;
    auto length = line.arguments.empty() ? std::nullopt : lengthOfWord(line.arguments.back());
    if (length) named.arguments.pop_back();
    if (!length && line.arguments.size() > 1) {  // "2 hours"
        length = lengthOfWord(*(line.arguments.end() - 2) + line.arguments.back());
        if (length) named.arguments.resize(line.arguments.size() - 2);
    }
    const bool isNamed =
        line.arguments.size() == 2 && (isToken(line.arguments[0]) || numberIn(line.arguments[0], kMany));
    if (isNamed && !length)
        return misused(
            filled(translated("\"{1}\" is no length of time; such are 30m, 1h, 1h30m."), {line.arguments.back()}));
    if (length && *length * kMinute > rules::kMostPostponement)
        return misused(
            filled(translated("\"{1}\" is too long: from a minute to twelve hours, please."), {line.arguments.back()}));
    const char* method = length ? wire::scheduler::kPostponeBy : wire::scheduler::kPostpone;
    const std::optional<Seconds> by = length ? std::optional(*length * kMinute) : std::nullopt;
    const auto said = [&](const Occurrences&, const Value& one) {
        const Instant now = std::time(nullptr), at = newTimeOf(one, by.value_or(rules::kPostponement), line.root);
        return filled(translated("Postponed: {1}, from {2} to {3}."),
                      {actionName(one), whenText(one[keys::kAt].integer(), now), comingText(at, now)});
    };
    return sayOf(named, method, said, by);
}

ExitStatus trySchedule(const CommandLine& line) {
    const Plan plan(line.root);
    ExitStatus status = ExitStatus::kDone;
    const auto chosen = chosenSchedules(plan, line.arguments, status);
    if (status != ExitStatus::kDone) return status;
    if (chosen.size() > 1) return misused(translated("One at a time, please."));
    const Value& schedule = plan.schedules()[chosen.front()];
    const std::string& type = schedule[schedule_keys::kActionType].text();
    const bool endsSession = type == schedule_keys::kSleepType || type == schedule_keys::kShutDownType;
    if (endsSession && isRemote() && !line.isFlagged && !agreed()) {
        complain(translated("Not tried: over a remote log-in this takes a \"y\", or --yes."));
        return ExitStatus::kFailed;
    }
    const Answer answer = DaemonClient().tryNow(schedule);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    if (line.json) page.line(jsonOutput(Dictionary{{"Tried", static_cast<std::int64_t>(chosen.front() + 1)}}));
    if (!line.json)
        page.line(filled(translated("Tried {1}: {2}. \"quorelctl log\" says what becomes of it."),
                         {std::to_string(chosen.front() + 1), summaryOf(schedule, plan.actions())}));
    return ExitStatus::kDone;
}

}  // namespace quorel
