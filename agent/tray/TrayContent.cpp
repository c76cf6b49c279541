#include "agent/tray/TrayContent.h"

#include <algorithm>
#include <utility>

#include "model/Upcoming.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

constexpr std::size_t kMostOccurrences = 3;
constexpr const char* kIndent = "\u2003";

std::string nameOf(const Value& upcoming) {
    return actionName(upcoming);
}

/// "Sleep, Mon 2026-11-23 23:15 (skipped by alice)"
std::string lineOf(const Value& upcoming) {
    const std::string line =
        filled(translated("{1}, {2}"), {nameOf(upcoming), momentText(upcoming[keys::kAt].integer())});
    const std::string step = stepText(upcoming);
    return step.empty() ? line : filled(translated("{1} ({2})"), {line, step});
}

void addLine(TrayContent& content, std::string text) {
    content.menu.push_back({std::move(text)});
}

void addChoice(TrayContent& content, std::string text, TrayContent::Choice choice) {
    content.choices.push_back(std::move(choice));
    content.menu.push_back({std::move(text), static_cast<int>(content.choices.size())});
}

void addOccurrence(TrayContent& content, const Value& one, const TrayTold& told) {
    const std::string token = one[keys::kToken].text();
    const auto add = [&](const char* text, TrayContent::Choice choice) {
        addChoice(content, kIndent + std::string(text), std::move(choice));
    };
    addLine(content, lineOf(one));
    if (canBeSkipped(one) && told.mayPostpone) {
        add(translated("Postpone 15 minutes"), {TrayContent::Choice::kPostpone, token, rules::kPostponement});
        add(translated("Postpone 1 hour"), {TrayContent::Choice::kPostpone, token, kHour});
    }
    if (!told.maySkip) return;
    if (canBeSkipped(one)) add(translated("Skip"), {TrayContent::Choice::kSkip, token});
    if (isSkipped(one)) add(translated("Undo skip"), {TrayContent::Choice::kUnskip, token});
    if (keepsAwake(one)) add(translated("Let it sleep"), {TrayContent::Choice::kSkip, token});
}

/// Ending one that is no brief one is a change of the plan, which is not for the panel.
void addPause(TrayContent& content, const Value& pause, bool mayPause) {
    if (!mayPause || (pause.isPresent() && pause[keys::kBrief].intValue() == 0)) return;
    content.menu.emplace_back();
    if (pause.isPresent())
        addChoice(content, translated("Resume"), {TrayContent::Choice::kResume, pause[keys::kToken].text()});
    else
        addChoice(content, translated("Pause until tomorrow"), {TrayContent::Choice::kPause});
}

/// What is in the menu whatever is planned.
void addRest(TrayContent& content, bool hasSettings) {
    content.menu.emplace_back();
    addChoice(content, translated("Check for Updates"), {TrayContent::Choice::kCheckUpdates});
    if (hasSettings) addChoice(content, translated("Open Settings"), {TrayContent::Choice::kOpenSettings});
}

}  // namespace

TrayContent trayContent(const TrayTold& told, Instant now, bool hasSettings) {
    const Array& upcoming = told.upcoming;
    TrayContent content;
    const Value pause = pauseAround(told.pauses, now);
    if (pause.isPresent()) addLine(content, filled(translated("Paused {1}"), {pauseText(pause, now)}));
    if (upcoming.empty()) addLine(content, translated("Nothing is planned."));
    for (std::size_t i = 0; i < std::min(upcoming.size(), kMostOccurrences); ++i)
        addOccurrence(content, upcoming[i], told);
    const auto next = std::ranges::find_if(upcoming, canBeSkipped);
    content.title = pause.isPresent() || next == upcoming.end() ? content.menu.front().text : lineOf(*next);
    addPause(content, pause, told.mayPause);
    addRest(content, hasSettings);
    return content;
}

TrayContent trayContentWithoutDaemon(bool hasSettings) {
    TrayContent content{translated("The daemon is not running."), {}, {}};
    addLine(content, content.title);
    addRest(content, hasSettings);
    return content;
}

}  // namespace quorel
