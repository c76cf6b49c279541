#include "agent/tray/TrayContent.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

constexpr std::size_t kLines = 3;

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

/// Whether there is something to be said to it: it is not left out already, and has not begun.
bool isAhead(const Value& upcoming) {
    const std::string_view step = upcoming[keys::kStep].text();
    return step != wire::step::kSkipped && step != wire::step::kRunning && step != wire::step::kActing &&
           !upcoming[keys::kToken].text().empty();
}

TrayContent contentOf(std::string title, const std::vector<std::string>& lines, std::string token, bool maySkip,
                      bool mayPostpone) {
    TrayContent content{std::move(title), {}, std::move(token)};
    const auto add = [&](std::string text, bool enabled, TrayContent::Choice choice) {
        content.menu.push_back({std::move(text), enabled ? choice : TrayContent::kNone});
    };
    for (const std::string& line : lines) add(line, false, TrayContent::kNone);
    content.menu.emplace_back();
    add(translated("Postpone 15 minutes"), mayPostpone && !content.token.empty(), TrayContent::kPostpone);
    add(translated("Skip"), maySkip && !content.token.empty(), TrayContent::kSkip);
    content.menu.emplace_back();
    add(translated("Check for Updates"), true, TrayContent::kCheckUpdates);
    add(translated("Open Settings"), true, TrayContent::kOpenSettings);
    return content;
}

}  // namespace

TrayContent trayContent(const Array& upcoming, bool maySkip, bool mayPostpone) {
    std::vector<std::string> lines;
    for (const Value& one : upcoming)
        if (lines.size() < kLines) lines.push_back(lineOf(one));
    if (lines.empty()) lines.emplace_back(translated("Nothing is planned."));
    const auto next = std::ranges::find_if(upcoming, isAhead);
    if (next == upcoming.end()) return contentOf(lines.front(), lines, {}, maySkip, mayPostpone);
    return contentOf(lineOf(*next), lines, (*next)[keys::kToken].text(), maySkip, mayPostpone);
}

TrayContent trayContentWithoutDaemon() {
    const std::string text = translated("The daemon is not running.");
    return contentOf(text, {text}, {}, false, false);
}

}  // namespace quorel
