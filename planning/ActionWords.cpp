#include "planning/ActionWords.h"

#include <algorithm>
#include <array>
#include <utility>

#include "model/Schedule.h"
#include "planning/TimeWords.h"

namespace quorel {

namespace {

/// Those that the computer has without any folder.
constexpr std::array kOwnTypes = {schedule_keys::kSleepType, schedule_keys::kWakeUpType, schedule_keys::kShutDownType,
                                  schedule_keys::kStayAwakeType};

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isTypedName(std::string_view word) {
    return !word.empty() && isLetter(word.front()) &&
           std::ranges::all_of(word, [](char c) { return (isLetter(c) && c >= 'a') || isDigit(c) || c == '-'; });
}

/// What can be told from all other words: "com.example.Backup".
bool looksLikeType(std::string_view type) {
    return !type.empty() && isLetter(type.front()) && type.find('.') != std::string_view::npos &&
           std::ranges::all_of(type,
                               [](char c) { return isLetter(c) || isDigit(c) || c == '.' || c == '-' || c == '_'; });
}

/// What is the same in "shut-down", "shutdown" and "Shut Down".
std::string lettersOf(std::string_view word) {
    std::string result;
    for (const char c : word)
        if (c != '-' && c != ' ') result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

bool meansSomethingElse(std::string_view word) {
    return word == "on" || word == "off" || word == "at" || word == "every" || word == "options" || daysOfWord(word) ||
           minuteOfWord(word);
}

std::string shortName(std::string_view type) {
    return typedName(type.substr(type.rfind('.') + 1));
}

}  // namespace

ActionWords::ActionWords(std::vector<ActionDescription> descriptions) : _descriptions(std::move(descriptions)) {
    std::erase_if(_descriptions, [](const auto& one) { return !one.isSound(); });
    for (const std::string_view type : kOwnTypes) _names.emplace(type, shortName(type));
    for (const ActionDescription& one : _descriptions) _names.emplace(one.type, shortName(one.type));
    std::map<std::string, int> uses;
    for (const auto& [type, name] : _names) ++uses[name];
    for (auto& [type, name] : _names) {
        const bool isFine = isTypedName(name) && uses[name] == 1 && !meansSomethingElse(name);
        if (!isFine) name = looksLikeType(type) ? type : std::string();
    }
}

const ActionDescription* ActionWords::description(std::string_view type) const {
    const auto found = std::ranges::find(_descriptions, type, &ActionDescription::type);
    return found == _descriptions.end() ? nullptr : &*found;
}

std::string ActionWords::nameOf(std::string_view type) const {
    const auto known = _names.find(type);
    if (known != _names.end()) return known->second;
    return looksLikeType(type) ? std::string(type) : std::string();
}

std::optional<std::string> ActionWords::typeOf(std::string_view word) const {
    const auto named = std::ranges::find(_names, word, [](const auto& one) { return std::string_view(one.second); });
    if (named != _names.end()) return named->first;
    for (const auto& [type, name] : _names)
        if (!name.empty() && lettersOf(name) == lettersOf(word)) return type;
    return looksLikeType(word) ? std::optional(std::string(word)) : std::nullopt;
}

bool ActionWords::isName(std::string_view first, std::string_view second) const {
    return std::ranges::any_of(_names, [&](const auto& one) {
        const std::size_t hyphen = one.second.find('-');
        return hyphen != std::string::npos && lettersOf(first) == lettersOf(one.second.substr(0, hyphen)) &&
               lettersOf(second) == lettersOf(one.second.substr(hyphen));
    });
}

std::string ActionWords::names() const {
    std::vector<std::string_view> names;
    for (const auto& [type, name] : _names)
        if (!name.empty()) names.push_back(name);
    std::ranges::sort(names);
    std::string all;
    for (const std::string_view name : names) all.append(all.empty() ? "" : ", ").append(name);
    return all;
}

std::string ActionWords::optionWord(const ActionDescription& description, const Option& option) {
    const std::string word = typedName(option.key);
    const bool isTaken =
        word == kWakeUp || word == kStartUp || word == kParameters ||
        std::ranges::count(description.options, word, [](const Option& one) { return typedName(one.key); }) > 1;
    return isTypedName(word) && !isTaken ? word : std::string();
}

const Option* ActionWords::optionOf(const ActionDescription& description, std::string_view word) {
    const auto found =
        std::ranges::find(description.options, word, [&](const Option& one) { return optionWord(description, one); });
    return word.empty() || found == description.options.end() ? nullptr : &*found;
}

std::string ActionWords::optionWords(const ActionDescription* description) {
    std::vector<std::string> words;
    if (description)
        for (const Option& option : description->options) words.push_back(optionWord(*description, option));
    if (!description || !description->wakesUp.isFixed) words.emplace_back(kWakeUp);
    if (!description || !description->startsUp.isFixed) words.emplace_back(kStartUp);
    words.emplace_back(kParameters);
    std::string all;
    for (const std::string& word : words)
        if (!word.empty()) all.append(all.empty() ? "" : ", ").append(word);
    return all;
}

}  // namespace quorel
