#include "actions/ActionDescription.h"

#include <algorithm>
#include <utility>

#include "actions/DescriptionKeys.h"
#include "model/ActionParameters.h"
#include "model/Lines.h"
#include "model/PlainText.h"
#include "model/Wire.h"

namespace quorel {

namespace {

namespace keys = wire::keys;

constexpr std::string_view kPlace = "%@";

bool isOn(const Value& parameters, const std::string& flag) {
    return flag.empty() || parameters[flag].intValue() != 0;
}

/// Whether the line is to tell it.
bool isWorthTelling(const Option& option, const Value& value) {
    switch (option.kind) {
        case OptionKind::kFlag:
            return value.intValue() != 0;
        case OptionKind::kText:
        case OptionKind::kLines:
            return !value.text().empty();
        case OptionKind::kChoice:
            return value != option.standard;
        case OptionKind::kNumber:
        case OptionKind::kTime:
            break;
    }
    return true;
}

std::string shownValue(const Option& option, const Value& value, std::string_view language) {
    if (option.kind == OptionKind::kNumber) return std::to_string(value.intValue());
    if (option.kind == OptionKind::kChoice) {
        const auto choice = std::ranges::find(option.choices, value.text(), &Choice::value);
        if (choice != option.choices.end()) return inLanguage(choice->names, language);
    }
    const std::string& text = value.text();
    // Of a file its name does.
    const bool isPath = option.isFile && isWholePath(text) && !text.ends_with('/');
    return isPath ? text.substr(text.rfind('/') + 1) : text;
}

/// What begins a line begins with a capital: a letter from "a" to "z", or one of those with accents, of two bytes.
void capitalize(std::string& text) {
    if (text.empty()) return;
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    const bool isAccented = text.size() > 1 && text[0] == '\xC3' && text[1] >= '\xA0' && text[1] <= '\xBE';
    if (isAccented && text[1] != '\xB7') text[1] = static_cast<char>(text[1] - 0x20);  // that one is no letter
}

Array textsOf(std::initializer_list<std::pair<bool, std::string_view>> words) {
    Array texts;
    for (const auto& [isThere, word] : words)
        if (isThere) texts.emplace_back(word);
    return texts;
}

}  // namespace

const Option* ActionDescription::option(std::string_view key) const {
    const auto found = std::ranges::find(options, key, &Option::key);
    return found == options.end() ? nullptr : &*found;
}

bool ActionDescription::goesOn(std::size_t option) const {
    return option > 0 && !options[option].isWide() && options[option].dependsOn == options[option - 1].key;
}

Value ActionDescription::standards() const {
    return completed(Dictionary{{parameters::kNeedsWakeUp, wakesUp.standard},  //
                                {parameters::kNeedsStartup, startsUp.standard}});
}

Value ActionDescription::completed(const Value& stored) const {
    Dictionary complete = stored.dictionary();
    for (const Option& option : options) complete.set(option.key, option.completed(stored[option.key]));
    complete.set(parameters::kNeedsWakeUp, wakesUp.completed(stored[parameters::kNeedsWakeUp]));
    complete.set(parameters::kNeedsStartup, startsUp.completed(stored[parameters::kNeedsStartup]));
    return complete;
}

std::string ActionDescription::line(const Value& stored, std::string_view language) const {
    const Value own = completed(stored);
    std::string line;
    for (const Option& option : options) {
        std::string part = inLanguage(option.says, language);
        const Value& value = own[option.key];
        if (part.empty() || !isOn(own, option.dependsOn) || !isWorthTelling(option, value)) continue;
        if (line.empty()) capitalize(part);
        if (const std::size_t place = part.find(kPlace); place != std::string::npos)
            part.replace(place, kPlace.size(), shownValue(option, value, language));
        line.append(line.empty() ? "" : ", ").append(part);
    }
    if (line.empty()) line = inLanguage(says, language);
    if (line.empty()) line = inLanguage(names, language);
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return plainText(line);
}

std::optional<Value> ActionDescription::withWords(const Value& stored, std::span<const std::string> typed) const {
    Value result = stored;
    std::span<const std::string> words = typed;
    for (const Option& option : options) {
        if (!option.takesWords || words.empty()) continue;
        const bool isLines = option.kind == OptionKind::kLines, isProse = isLines && words.size() == typed.size();
        const auto own = words.first(isLines ? words.size() : 1);
        words = words.subspan(own.size());
        const auto hasLineEnd = [](const std::string& word) { return word.find('\n') != std::string::npos; };
        if (!isProse && std::ranges::any_of(own, hasLineEnd)) return {};
        std::string text = isLines && !isProse ? textOfLines(own) : own.front();
        for (const std::string& word : own.subspan(1))
            if (isProse) text.append(" ").append(word);
        const auto value = option.valueOf(text);
        if (!value) return {};
        result = result.with(option.key, *value);
    }
    return words.empty() ? std::optional(result) : std::nullopt;
}

Value ActionDescription::value() const {
    Dictionary value{{keys::kBundle, plainText(bundle)}};
    if (!type.empty()) value.set(keys::kAction, plainText(type));
    if (names.size() > 0) value.set(keys::kNames, names);
    if (!faults.empty()) value.set(keys::kFault, faults.front().code);
    if (!faults.empty() && !faults.front().key.empty()) value.set(keys::kFaultKey, plainText(faults.front().key));
    const bool isKnown = faults.empty() || faults.front().code == description_fault::kBadProgram ||
                         faults.front().code == description_fault::kTaken;
    if (program.empty() || !isKnown) return value;
    value.set(keys::kProgram, program);
    value.set(keys::kRunsAs, isSystem ? description_keys::kSystem : description_keys::kUser);
    value.set(keys::kTimeLimit, limit);
    value.set(keys::kMakeUp, makeUp);
    Array needs = textsOf({{mayUseNetwork, description_keys::kNetwork}, {isRoot, description_keys::kRoot}});
    if (!needs.empty()) value.set(keys::kNeeds, std::move(needs));
    if (!writes.empty()) value.set(keys::kWrites, Array(writes.begin(), writes.end()));
    return value;
}

}  // namespace quorel
