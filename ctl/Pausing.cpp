// Pauses: setting them, and ending them.
#include <algorithm>
#include <ctime>
#include <optional>
#include <span>
#include <string>

#include "ctl/Commands.h"
#include "ctl/Failures.h"
#include "ctl/JsonOutput.h"
#include "ctl/Moment.h"
#include "ctl/Occurrences.h"
#include "ctl/Page.h"
#include "ctl/Selection.h"
#include "linux/time/SystemCalendar.h"
#include "model/Dictionary.h"
#include "model/Upcoming.h"
#include "model/Wire.h"
#include "planning/TimeWords.h"
#include "scheduler/Rules.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/WhenText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
using Answer = DaemonClient::Answer;
using Failure = DaemonClient::Failure;

constexpr int kMorning = rules::kMorning * 60;

/// 0 as on the wire.
struct Span {
    Instant from = 0;
    Instant until = 0;
};

/// Of "until fri 18:00", "fri", "2h", "for 2 hours", "fri..sun", or nothing. Nothing where it is not understood.
std::optional<Span> spanOf(const std::vector<std::string>& arguments, Instant now) {
    Span span;
    if (arguments.empty()) return span;
    const bool isFor = arguments[0] == "for" || arguments[0] == "in", isSaid = isFor || arguments[0] == "until";
    std::string text, word;
    for (const std::string& one : std::span(arguments).subspan(isSaid ? 1 : 0)) {
        text += (text.empty() || isTime(word, one) ? "" : " ") + one;
        word = one;
    }
    const SystemCalendar calendar;
    const std::size_t dots = isSaid ? std::string::npos : text.find("..");
    const bool isUntil = dots == std::string::npos;
    std::string together = text;
    std::erase(together, ' ');
    const auto length = isFor || !isSaid ? lengthOfWord(together) : std::nullopt;  // "until 7h" is a time
    if (length) return Span{0, now + *length * kMinute};
    if (isFor) return {};
    const std::string from = isUntil ? "" : text.substr(0, dots);
    const std::string until = isUntil ? text : text.substr(dots + 2);
    const auto begins = from.empty() ? now : momentOf(from, now, 0, calendar);
    if (!begins) return {};
    if (*begins > now) span.from = *begins;
    if (until.empty() && !isUntil) return span;
    const auto ends = momentOf(until, std::max(*begins, now), kMorning, calendar);
    if (!ends) return {};
    span.until = *ends;
    return span;
}

/// Those that the argument means: all, or the one of that number, or the one that goes on, or the only one.
Array chosenPauses(const Array& pauses, const std::string& name) {
    if (name == "all" || (name.empty() && pauses.size() == 1)) return pauses;
    if (const auto number = numberIn(name, pauses.size())) return {pauses[*number - 1]};
    Array begun;
    const Instant now = std::time(nullptr);
    for (const Value& one : pauses)
        if (name.empty() && one[keys::kFrom].integer() <= now) begun.push_back(one);
    return begun.size() == 1 ? begun : Array();
}

/// " Another pause goes on until …", where one does.
std::string longerPause(Instant until, Instant now) {
    DaemonClient daemon;
    const Answer told = askForList(daemon, wire::scheduler::kPauses);
    const Value around = pauseAround(told.value.array(), until);
    if (around.isAbsent()) return {};
    return " " +
           filled(translated("Another pause goes on until {1}."), {comingText(around[keys::kUntil].integer(), now)});
}

}  // namespace

ExitStatus pausePlan(const CommandLine& line) {
    const Instant now = std::time(nullptr);
    const auto span = spanOf(line.arguments, now);
    if (!span)
        return misused(
            translated("Until when? As \"until 18:00\", \"until fri\", \"2h\", or "
                       "\"2026-12-24..2027-01-02 12:00\"."));
    const Answer answer = DaemonClient().pause(span->from, span->until);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    if (line.json) {
        page.line(jsonOutput(answer.value.dictionary()));
        return ExitStatus::kDone;
    }
    const std::string until = comingText(answer.value[keys::kUntil].integer(), now);
    const Value& next = answer.value[keys::kNext];
    std::string text = filled(translated("Paused until {1}."), {until});
    if (span->from != 0 && answer.value[keys::kFrom].integer() > now)
        text = filled(translated("To be paused from {1} until {2}."),
                      {whenText(answer.value[keys::kFrom].integer(), now), until});
    text.append(" ").append(next.isAbsent() ? std::string(translated("Nothing is planned after that."))
                                            : filled(translated("First after that: {1}, {2}."),
                                                     {actionName(next), whenText(next[keys::kAt].integer(), now)}));
    page.line(text + longerPause(answer.value[keys::kUntil].integer(), now));
    return ExitStatus::kDone;
}

ExitStatus resumePlan(const CommandLine& line) {
    if (line.arguments.size() > 1) return misused(translated("Too many arguments."));
    const std::string name = line.arguments.empty() ? std::string() : line.arguments[0];
    DaemonClient daemon;
    const Answer told = askForList(daemon, wire::scheduler::kPauses);
    if (told.failure != Failure::kNone) return fail(told);
    const Array& pauses = told.value.array();
    if (pauses.empty()) return notFound(translated("Nothing is paused."));
    const Array ended = chosenPauses(pauses, name);
    if (ended.empty()) {
        std::string lines;
        for (const std::string& one : pauseLines(pauses)) lines += "\n  " + one;
        return notFound(translated("Which one? Give its number, or \"all\":") + lines);
    }
    const std::string token = name == "all" ? std::string() : ended.front()[keys::kToken].text();
    const Answer answer = DaemonClient().change(wire::scheduler::kResume, token);
    if (answer.failure != Failure::kNone) return fail(answer);
    const Page page;
    if (line.json) page.line(jsonOutput(Dictionary{{"Ended", ended}}));
    const Occurrences after(line.root, daemon, 1);
    const Value next = after.upcoming().empty() ? Value() : after.upcoming().front();
    const Instant now = std::time(nullptr);
    std::string text = ended.size() == 1 ? translated("The pause is over.") : translated("The pauses are over.");
    if (next.isPresent())
        text +=
            " " + filled(translated("Next: {1}, {2}."), {actionName(next), comingText(next[keys::kAt].integer(), now)});
    if (!line.json) page.line(text);
    return ExitStatus::kDone;
}

}  // namespace quorel
