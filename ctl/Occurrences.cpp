#include "ctl/Occurrences.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ctl/ScheduleText.h"
#include "ctl/Selection.h"
#include "model/Dictionary.h"
#include "model/Schedule.h"
#include "model/Wire.h"
#include "words/Language.h"
#include "words/OutcomeText.h"
#include "words/WhenText.h"

namespace quorel {

namespace keys = wire::keys;

DaemonClient::Answer askForList(DaemonClient& daemon, const char* method, std::optional<unsigned> most) {
    using Failure = DaemonClient::Failure;
    DaemonClient::Answer answer = daemon.ask(method, most);
    if (answer.failure != Failure::kNone) return answer;
    bool understood = answer.value.isArray();
    for (const Value& one : answer.value.array()) understood = understood && one.isDictionary();
    if (!understood) answer.failure = Failure::kNotUnderstood;
    return answer;
}

std::vector<std::string> pauseLines(const Array& pauses) {
    std::vector<std::string> lines;
    for (const Value& one : pauses)
        lines.push_back(filled(translated("Pause {1}: {2}"),
                               {std::to_string(lines.size() + 1), pauseText(one, std::time(nullptr))}));
    return lines;
}

Occurrences::Occurrences(const std::string& root, DaemonClient& daemon, unsigned most)
    : _plan(root),
      _pauses(askForList(daemon, wire::scheduler::kPauses).value.array()),
      _forecast(_plan.schedules(), _plan.actions(), _pauses),
      _answer(askForList(daemon, wire::scheduler::kUpcoming, most)) {
    if (_answer.failure != DaemonClient::Failure::kNone) return;
    for (const Value& one : _answer.value.array()) {
        const auto index = _forecast.indexOf(one[keys::kToken].text(), one[keys::kDue].integer());
        _upcoming.push_back(index ? one.with(keys::kNumber, static_cast<std::int64_t>(*index + 1)) : one);
    }
}

Value Occurrences::meant(const std::string& name, bool isSkipped) const {
    const auto number = numberIn(name, _plan.schedules().size());
    for (const Value& one : _upcoming) {
        const bool isNamed =
            number ? one[keys::kNumber].integer() == *number : name.empty() || one[keys::kToken].text() == name;
        if (isNamed &&
            (one[keys::kToken].text() == name || (one[keys::kStep].text() == wire::step::kSkipped) == isSkipped))
            return one;
    }
    const bool isTold = std::ranges::any_of(
        _upcoming, [&](const Value& one) { return number && one[keys::kNumber].integer() == *number; });
    if (name.empty() || (isSkipped && isTold)) return {};
    if (number) {
        const auto due = _forecast.next(*number - 1, std::time(nullptr));
        return due ? planned(*number - 1, *due, _forecast.token(*number - 1, std::time(nullptr))) : Value();
    }
    const Instant due = std::strtoll(name.c_str(), nullptr, 10);
    const auto index = _forecast.indexOf(name, due);
    return index ? planned(*index, due, name) : Value(Dictionary{{keys::kToken, name}});
}

/// As the daemon would tell it.
Value Occurrences::planned(std::size_t index, Instant due, const std::string& token) const {
    const std::string& action = _plan.schedules()[index][schedule_keys::kActionType].text();
    Dictionary one{{keys::kToken, token}, {keys::kDue, due}, {keys::kAt, due}, {keys::kAction, action}};
    one.set(keys::kNumber, static_cast<std::int64_t>(index + 1));
    if (const ActionDescription* description = _plan.actions().description(action))
        one.set(keys::kNames, description->names);
    return one;
}

std::string Occurrences::nextSentence(std::int64_t number, Instant after) const {
    const Instant now = std::time(nullptr);
    const auto index = static_cast<std::size_t>(number - 1);
    if (number < 1 || index >= _plan.schedules().size()) return {};
    const auto next = _forecast.next(index, std::max(after, now));
    return next ? " " + filled(translated("Next: {1}."), {comingText(*next, now)}) : std::string();
}

}  // namespace quorel
