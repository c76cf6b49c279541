#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include "ctl/CheckModule.h"
#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/Hints.h"
#include "ctl/JsonOutput.h"
#include "ctl/ModuleText.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/ScheduleText.h"
#include "ctl/Selection.h"
#include "ctl/SessionAgent.h"
#include "ctl/StatusText.h"
#include "model/Dictionary.h"
#include "model/Wire.h"
#include "planning/Json.h"
#include "scheduler/Outcome.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;
using Colour = Page::Colour;
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

constexpr unsigned kUsualUpcoming = 5;
constexpr unsigned kUsualOutcomes = 10;
constexpr unsigned kInStatus = 10;
constexpr std::chrono::seconds kBeforeAnotherBus{5};

/// How many are wanted. Nothing where that is no number, which has been said.
std::optional<unsigned> wanted(const CommandLine& line, unsigned usual, unsigned most) {
    const bool isFine = line.arguments.size() <= 1;
    const auto number = line.arguments.empty() ? usual : isFine ? numberIn(line.arguments[0], most) : std::nullopt;
    if (!isFine) misused(translated("Too many arguments."));
    if (isFine && !number) misused(filled(translated("A number from 1 to {1}, please."), {std::to_string(most)}));
    return number;
}

/// A row of a table, with what it begins with on a page of any width; the cells below each other on a narrow one.
void addRow(Rows& rows, const Page& page, const std::string& mark, Row cells) {
    if (!page.isNarrow()) {
        if (!mark.empty()) cells.insert(cells.begin(), mark);
        return rows.push_back(std::move(cells));
    }
    rows.push_back({mark.empty() ? "-" : mark, cells.front()});
    for (std::size_t i = 1; i < cells.size(); ++i)
        if (!cells[i].empty()) rows.push_back({cells[i]});
}

Rows logRows(const Page& page, const Value& outcome) {
    Rows rows;
    const std::int64_t due = outcome[keys::kDue].integer();
    addRow(rows, page, {},
           {momentText(due != 0 ? due : outcome[keys::kAt].integer()), due != 0 ? actionName(outcome) : std::string(),
            outcomeText(outcome)});
    return rows;
}

/// Those of `now` that came after the last of `before`.
Array newOnes(const Array& before, const Array& now) {
    if (before.empty()) return now;
    auto last = now.end();
    while (last != now.begin() && *(last - 1) != before.back()) --last;
    return {last, now.end()};
}

/// As they come, until the program is ended.
ExitStatus follow(const CommandLine& line, Array told) {
    const Page page;
    std::optional<Hints> hints(std::in_place);
    while (true) {
        DaemonClient daemon;
        const Answer answer = askForList(daemon, wire::scheduler::kOutcomes, wire::scheduler::kMostOutcomes);
        for (const Value& one : newOnes(told, answer.value.array()))
            line.json ? page.line(jsonOutput(one.dictionary())) : page.table(logRows(page, one));
        if (!answer.value.array().empty()) told = answer.value.array();  // else it may be starting again
        std::fflush(stdout);
        if (std::ferror(stdout) != 0) return ExitStatus::kFailed;  // nobody reads it any more
        if (hints->wait()) continue;
        std::this_thread::sleep_for(kBeforeAnotherBus);
        hints.emplace();
    }
}

}  // namespace

ExitStatus showStatus(const CommandLine& line) {
    if (!line.arguments.empty()) return misused(translated("Too many arguments."));
    const Page page;
    DaemonClient daemon;
    const Answer status = daemon.ask(wire::scheduler::kStatus);
    if (status.failure == Failure::kNotRunning) {
        if (line.json) page.line(jsonOutput(Dictionary{{"Running", false}}));
        if (!line.json) page.headline(Colour::kNone, false, translated("quorel-daemon is not running"));
        return ExitStatus::kNotRunning;
    }
    if (status.failure != Failure::kNone) return fail(status);
    if (!status.value.isDictionary()) return fail({Failure::kNotUnderstood, {}, {}, {}});
    const Occurrences next(line.root, daemon, kInStatus);
    if (next.answer().failure != Failure::kNone) return fail(next.answer());
    const Answer last = askForList(daemon, wire::scheduler::kOutcomes, 1U);
    const Array& outcomes = last.value.array();
    const bool well = isWell(status.value);
    if (line.json) {
        Value told = status.value.with("Running", true).with("Upcoming", next.upcoming());
        told = told.with(wire::scheduler::kPauses, next.pauses());
        if (!outcomes.empty()) told = told.with("Last", outcomes.back());
        page.line(jsonOutput(told.dictionary()));
    } else {
        page.headline(well ? Colour::kGood : Colour::kWarning, true,
                      filled(translated("quorel-daemon {1} is running"), {status.value[keys::kVersion].text()}));
        auto fields =
            statusFields(status.value, next.upcoming(), next.pauses(), outcomes.empty() ? Value() : outcomes.back());
        if (isAgentMissing())
            fields.emplace_back(translated("Agent:"), translated("none in this session; \"systemctl --user start "
                                                                 "quorel-agent\" starts it"));
        page.fields(fields);
    }
    return well ? ExitStatus::kDone : ExitStatus::kNotWell;
}

ExitStatus showNext(const CommandLine& line) {
    const auto most = wanted(line, kUsualUpcoming, wire::scheduler::kMostUpcoming);
    if (!most) return ExitStatus::kUsage;
    DaemonClient daemon;
    const Occurrences next(line.root, daemon, *most);
    if (next.answer().failure != Failure::kNone) return fail(next.answer());
    const Page page;
    Rows rows;
    for (const Value& one : next.upcoming()) {
        const Value& number = one[keys::kNumber];
        addRow(rows, page, number.isAbsent() ? " " : std::to_string(number.integer()),
               {momentText(one[keys::kAt].integer()), actionName(one), one[keys::kToken].text()});
        if (const std::string step = stepText(one); !step.empty()) rows.push_back({step});
    }
    if (!line.json)
        for (const std::string& one : pauseLines(next.pauses())) page.line(one);
    if (line.json) {
        page.line(jsonOutput(Dictionary{{"Upcoming", next.upcoming()}, {wire::scheduler::kPauses, next.pauses()}}));
    } else if (rows.empty()) {
        page.line(translated("Nothing is planned."));
    } else {
        page.table(std::move(rows));
    }
    return ExitStatus::kDone;
}

ExitStatus showLog(const CommandLine& line) {
    const auto most = wanted(line, kUsualOutcomes, wire::scheduler::kMostOutcomes);
    if (!most) return ExitStatus::kUsage;
    DaemonClient daemon;
    const Answer answer = askForList(daemon, wire::scheduler::kOutcomes, most);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    Rows rows;
    for (const Value& one : answer.value.array())
        for (Row& row : logRows(page, one)) rows.push_back(std::move(row));
    if (line.json && line.isFlagged) {
        for (const Value& one : answer.value.array()) page.line(jsonOutput(one.dictionary()));
    } else if (line.json) {
        page.line(jsonOutput(Dictionary{{"Outcomes", answer.value}}));
    } else if (rows.empty()) {
        if (!line.isFlagged) page.line(translated("Nothing has happened yet."));
    } else {
        page.table(std::move(rows));
    }
    return line.isFlagged ? follow(line, answer.value.array()) : ExitStatus::kDone;
}

ExitStatus showModules(const CommandLine& line) {
    if (line.isFlagged && line.arguments.size() == 1) return checkModule(Page(), line);
    if (line.isFlagged) return misused(translated("Which folder?"));
    if (!line.arguments.empty()) return misused(translated("Too many arguments."));
    DaemonClient daemon;
    const Answer answer = askForList(daemon, wire::scheduler::kModules);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    Rows rows;
    for (const Value& one : answer.value.array())
        for (const Row& row : moduleRows(one)) row.size() > 1 ? addRow(rows, page, {}, row) : rows.push_back(row);
    if (line.json) {
        page.line(jsonOutput(Dictionary{{"Modules", answer.value}}));
    } else if (rows.empty()) {
        page.line(translated("There are no modules."));
    } else {
        page.table(std::move(rows));
    }
    return ExitStatus::kDone;
}

}  // namespace quorel
