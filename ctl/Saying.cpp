// Saying no, later, and what else is said of single occurrences.

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/ScheduleText.h"
#include "model/Dictionary.h"
#include "model/Names.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;

/// Calls a method about the occurrence that the first argument names, and says in one line what became of it.
ExitStatus sayOf(const CommandLine& line, const char* method, const char* text, bool isSkipped = false) {
    DaemonClient daemon;
    const std::string name = line.arguments.empty() ? std::string() : line.arguments[0];
    const Occurrences before(line.root, daemon, wire::scheduler::kMostUpcoming);
    if (before.answer().failure != Failure::kNone) return fail(before.answer());
    const Value one = before.meant(name, isSkipped);
    if (one.isAbsent())
        return notFound(name.empty()
                            ? translated("Nothing is planned.")
                            : translated("There is no such occurrence. \"quorelctl next\" shows what there is."));
    const Answer answer = daemon.change(method, one["Token"].text());
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    const Instant due = one["Due"].integer();
    if (line.json) {
        page.line(jsonOutput(one.dictionary()));
    } else if (due != 0) {
        page.line(filled(text, {actionName(one), whenText(due, std::time(nullptr))}) +
                  before.nextSentence(one["Number"].integer(), due));
    }
    return ExitStatus::kDone;
}

}  // namespace

ExitStatus skip(const CommandLine& line) {
    if (line.arguments.size() > 1) return misused(translated("Too many arguments."));
    return sayOf(line, wire::scheduler::kSkip, translated("Skipped: {1}, {2}."));
}

ExitStatus postpone(const CommandLine& line) {
    if (line.arguments.size() > 1) return misused(translated("Too many arguments."));
    return sayOf(line, wire::scheduler::kPostpone, translated("Postponed by 15 minutes: {1}, {2}."));
}

}  // namespace quorel
