// Saying no, later, and what else is said of single occurrences.

#include <ctime>
#include <functional>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/ScheduleText.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;

/// Calls a method about the occurrence that the first argument names. `said` makes the line that tells of it.
ExitStatus sayOf(const CommandLine& line, const char* method,
                 const std::function<std::string(const Occurrences& before, const Value& one)>& said) {
    if (line.arguments.size() > 1) return misused(translated("Too many arguments."));
    DaemonClient daemon;
    const std::string name = line.arguments.empty() ? std::string() : line.arguments[0];
    const Occurrences before(line.root, daemon, wire::scheduler::kMostUpcoming);
    if (before.answer().failure != Failure::kNone) return fail(before.answer());
    const Value one = before.meant(name);
    if (one.isAbsent())
        return notFound(name.empty()
                            ? translated("Nothing is planned.")
                            : translated("There is no such occurrence. \"quorelctl next\" shows what there is."));
    const Answer answer = daemon.change(method, one[keys::kToken].text());
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    if (line.json) page.line(jsonOutput(one.dictionary()));
    // One that is further ahead than is told is known by its token alone.
    if (!line.json && one[keys::kDue].isPresent()) page.line(said(before, one));
    return ExitStatus::kDone;
}

/// Until when it was postponed, as the daemon tells now; 0 where it does not.
Instant newTimeOf(const Value& postponed, const std::string& root) {
    DaemonClient daemon;
    const Occurrences now(root, daemon, wire::scheduler::kMostUpcoming);
    for (const Value& one : now.upcoming())
        if (one[keys::kDue] == postponed[keys::kDue] && one[keys::kNumber] == postponed[keys::kNumber])
            return one[keys::kAt].integer();
    return 0;
}

}  // namespace

ExitStatus skip(const CommandLine& line) {
    return sayOf(line, wire::scheduler::kSkip, [](const Occurrences& before, const Value& one) {
        const Instant due = one[keys::kDue].integer();
        return filled(translated("Skipped: {1}, {2}."), {actionName(one), whenText(due, std::time(nullptr))}) +
               before.nextSentence(one[keys::kNumber].integer(), due);
    });
}

ExitStatus postpone(const CommandLine& line) {
    return sayOf(line, wire::scheduler::kPostpone, [&line](const Occurrences&, const Value& one) {
        const Instant now = std::time(nullptr), at = newTimeOf(one, line.root);
        return filled(translated("Postponed: {1}, from {2} to {3}."),
                      {actionName(one), whenText(one[keys::kAt].integer(), now), at != 0 ? comingText(at, now) : "?"});
    });
}

}  // namespace quorel
