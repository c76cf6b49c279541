#include "agent/tray/TrayContent.h"

#include <algorithm>
#include <utility>

#include "model/Upcoming.h"
#include "model/Wire.h"
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

/// What is in the menu whatever is planned.
void addRest(TrayContent& content, bool hasSettings) {
    content.menu.emplace_back();
    addChoice(content, translated("Check for Updates"), {TrayContent::Choice::kCheckUpdates});
    if (hasSettings) addChoice(content, translated("Open Settings"), {TrayContent::Choice::kOpenSettings});
}

}  // namespace

TrayContent trayContent(const Array& upcoming, bool maySkip, bool mayPostpone, bool hasSettings) {
    TrayContent content;
    if (upcoming.empty()) addLine(content, translated("Nothing is planned."));
    for (std::size_t i = 0; i < std::min(upcoming.size(), kMostOccurrences); ++i) {
        const Value& one = upcoming[i];
        addLine(content, lineOf(one));
        if (!canBeSkipped(one)) continue;
        const std::string token = one[keys::kToken].text();
        if (mayPostpone)
            addChoice(content, kIndent + std::string(translated("Postpone 15 minutes")),
                      {TrayContent::Choice::kPostpone, token});
        if (maySkip) addChoice(content, kIndent + std::string(translated("Skip")), {TrayContent::Choice::kSkip, token});
    }
    const auto next = std::ranges::find_if(upcoming, canBeSkipped);
    content.title = next == upcoming.end() ? content.menu.front().text : lineOf(*next);
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
