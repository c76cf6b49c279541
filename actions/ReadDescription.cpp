#include <algorithm>
#include <filesystem>
#include <limits>
#include <set>
#include <utility>

#include "actions/ActionDescription.h"
#include "actions/DescriptionKeys.h"
#include "actions/DescriptionWords.h"
#include "model/ActionParameters.h"
#include "model/PlainText.h"
#include "model/PropertyList.h"
#include "model/PropertyListText.h"
#include "model/Schedule.h"

namespace quorel {

namespace {

namespace keys = description_keys;
namespace words = description_keys::option;
using namespace description_fault;

constexpr std::size_t kLongestFileName = 255;

constexpr std::pair<std::string_view, OptionKind> kKinds[] = {
    {"flag", OptionKind::kFlag},   {"number", OptionKind::kNumber}, {"text", OptionKind::kText},
    {"lines", OptionKind::kLines}, {"choice", OptionKind::kChoice}, {"time", OptionKind::kTime}};

/// The system's service manager gives "$" and "%" in a path a meaning of their own.
bool isFileName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestFileName && name.front() != '.' &&
           std::ranges::none_of(name, [](char c) {
               return static_cast<unsigned char>(c) < 0x20 || std::string_view("/$%\x7f").find(c) != std::string::npos;
           });
}

/// Written out, and not the whole system.
bool isFolderPath(const std::string& path) {
    const std::filesystem::path read(path);
    return path.size() > 1 && path.front() == '/' && path.back() != '/' && path == read.lexically_normal() &&
           std::ranges::all_of(read.relative_path(), [](const auto& name) { return isFileName(name.native()); });
}

bool doesTheDaemonItself(const std::string& type) {
    return type == schedule_keys::kSleepType || type == schedule_keys::kWakeUpType ||
           type == schedule_keys::kShutDownType || type == schedule_keys::kStayAwakeType;
}

/// False of what a module says that comes with a class of its own, and nothing of its options.
bool isDescribed(const DescriptionWords& description) {
    const bool isOurs = description[keys::kClass].text() == keys::kDescribedPlugIn;
    return isOurs || description.has(keys::kFormat) || description.has(keys::kOptions);
}

FlagRule flagRule(DescriptionWords& description, std::string_view key) {
    const std::string& word = description.text(key);
    const bool isFixed = word == keys::kNever || word == keys::kAlways;
    const bool isChoice = word.empty() || word == keys::kChoice || word == keys::kChoiceOn;
    if (!isFixed && !isChoice) description.fault(kUnknown, key);
    return {isFixed, word == keys::kAlways || word == keys::kChoiceOn};
}

std::vector<Choice> choicesIn(DescriptionWords& option, std::vector<DescriptionFault>& faults) {
    std::vector<Choice> choices;
    std::size_t number = 0;
    for (const Value& each : option.array(words::kChoices, keys::kMostChoices)) {
        DescriptionWords choice(each, option.where(words::kChoices) + " " + std::to_string(++number) + " ", faults);
        choice.allowOnly({words::kValue, words::kNames});
        choice.require(words::kNames);
        Choice read{choice.name(words::kValue), choice.texts(words::kNames)};
        if (std::ranges::find(choices, read.value, &Choice::value) != choices.end())
            choice.fault(kDoubled, words::kValue);
        choices.push_back(std::move(read));
    }
    if (choices.empty()) option.fault(kMissing, words::kChoices);
    return choices;
}

/// Words that have a meaning for options of some kinds alone.
void checkKind(DescriptionWords& option, OptionKind kind) {
    const bool isText = kind == OptionKind::kText || kind == OptionKind::kLines;
    const std::pair<std::string_view, bool> cases[] = {{words::kLeast, kind == OptionKind::kNumber},
                                                       {words::kMost, kind == OptionKind::kNumber},
                                                       {words::kChoices, kind == OptionKind::kChoice},
                                                       {words::kTakesWords, isText},
                                                       {words::kIsFile, kind == OptionKind::kText}};
    for (const auto& [word, hasMeaning] : cases)
        if (!hasMeaning && option.has(word)) option.fault(kUnknown, word);
    if (kind == OptionKind::kNumber || kind == OptionKind::kTime) option.require(words::kDefault);
}

Value standardOf(DescriptionWords& words, const Option& option) {
    if (option.kind == OptionKind::kFlag) return words.flag(words::kDefault).value_or(false);
    if (option.kind == OptionKind::kNumber) {
        const int number = words.number(words::kDefault).value_or(option.least);
        if (number < option.least || number > option.most) words.fault(kRange, words::kDefault);
        return number;
    }
    const bool isChoice = option.kind == OptionKind::kChoice && !option.choices.empty();
    const std::string nothing = option.kind == OptionKind::kTime ? "00:00" : isChoice ? option.choices[0].value : "";
    if (!words.has(words::kDefault)) return nothing;
    const std::optional<Value> value = option.valueOf(words.text(words::kDefault));
    if (!value) words.fault(kRange, words::kDefault);
    return value.value_or(nothing);
}

Option readOption(DescriptionWords& option, std::vector<DescriptionFault>& faults) {
    option.allowOnly({words::kKey, words::kKind, words::kLabel, words::kUnit, words::kHelp, words::kSays,
                      words::kDefault, words::kLeast, words::kMost, words::kChoices, words::kDependsOn,
                      words::kTakesWords, words::kIsFile});
    option.require(words::kLabel);
    Option read;
    read.key = option.name(words::kKey);
    const auto kind =
        std::ranges::find(kKinds, option.text(words::kKind), &std::pair<std::string_view, OptionKind>::first);
    if (kind == std::end(kKinds)) {
        option.fault(option.has(words::kKind) ? kUnknown : kMissing, words::kKind);
        return read;
    }
    read.kind = kind->second;
    checkKind(option, read.kind);
    read.label = option.texts(words::kLabel);
    read.unit = option.texts(words::kUnit);
    read.help = option.texts(words::kHelp);
    read.says = option.texts(words::kSays);
    read.least = option.number(words::kLeast).value_or(0);
    read.most = option.number(words::kMost).value_or(std::numeric_limits<int>::max());
    if (read.least > read.most) option.fault(kRange, words::kMost);
    if (read.least > read.most) read.most = read.least;
    if (read.kind == OptionKind::kChoice) read.choices = choicesIn(option, faults);
    read.dependsOn = option.text(words::kDependsOn);
    read.takesWords = option.flag(words::kTakesWords).value_or(false);
    read.isFile = option.flag(words::kIsFile).value_or(false);
    read.standard = standardOf(option, read);
    return read;
}

void readOptions(ActionDescription& to, DescriptionWords& description) {
    std::set<std::string> typed = {"wake-up", "start-up", "off", typedName(parameters::kNeedsWakeUp),
                                   typedName(parameters::kNeedsStartup)};
    std::size_t number = 0;
    bool takesAll = false;  // an option before it takes all words that are left
    for (const Value& each : description.array(keys::kOptions, keys::kMostOptions)) {
        DescriptionWords option(each, std::string(keys::kOptions) + " " + std::to_string(++number) + " ", to.faults);
        if (!each.isDictionary()) {
            option.fault(kKind, words::kKey);
            continue;
        }
        Option read = readOption(option, to.faults);
        if (!typed.insert(typedName(read.key)).second) option.fault(kDoubled, words::kKey);
        if (read.takesWords && takesAll) option.fault(kUnknown, words::kTakesWords);
        takesAll = takesAll || (read.takesWords && read.kind == OptionKind::kLines);
        const Option* flag = to.option(read.dependsOn);
        if (!read.dependsOn.empty() && (!flag || flag->kind != OptionKind::kFlag))
            option.fault(kUnknown, words::kDependsOn);
        to.options.push_back(std::move(read));
    }
}

/// False where something is there that has no meaning: what a sandbox is to let through is not guessed.
void readSandbox(ActionDescription& to, DescriptionWords& description) {
    const Value& needs = description[keys::kNeeds];
    const Value& writes = description[keys::kWrites];
    if (needs.isPresent() && !needs.isArray()) description.fault(kMalformed, keys::kNeeds);
    if (writes.isPresent() && !writes.isArray()) description.fault(kMalformed, keys::kWrites);
    for (const Value& need : needs.array()) {
        if (need.text() != keys::kNetwork && need.text() != keys::kRoot) description.fault(kMalformed, keys::kNeeds);
        (need.text() == keys::kNetwork ? to.mayUseNetwork : to.isRoot) = true;
    }
    for (const Value& folder : writes.array()) {
        if (!isFolderPath(folder.text()) || to.writes.size() == keys::kMostWrites)
            return description.fault(kMalformed, keys::kWrites);
        to.writes.push_back(folder.text());
    }
}

std::int64_t secondsIn(DescriptionWords& description, std::string_view key, std::int64_t usual, std::int64_t least) {
    const std::optional<int> number = description.number(key);
    if (!number) return usual;
    const auto fits = std::clamp<std::int64_t>(*number, least, keys::kMostTimeLimit);
    if (fits != *number && isDescribed(description)) description.fault(kRange, key);
    return fits;
}

/// Words that mean nothing beside what else the description says.
void refuse(DescriptionWords& description, std::initializer_list<std::string_view> meaningless) {
    for (const std::string_view key : meaningless)
        if (description.has(key) && isDescribed(description)) description.fault(kUnknown, key);
}

void readProgram(ActionDescription& to, DescriptionWords& description) {
    to.program = description[keys::kProgram].text();
    if (to.program.empty()) {
        to.faults.push_back({kNoProgram, {}});
        return;
    }
    const std::string& runsAs = description[keys::kRunsAs].text();
    to.isSystem = runsAs == keys::kSystem;
    to.limit = secondsIn(description, keys::kTimeLimit, keys::kDefaultTimeLimit, 1);
    to.makeUp = secondsIn(description, keys::kMakeUp, 0, 0);
    if (!to.isSystem && runsAs != keys::kUser) description.fault(kMalformed, keys::kRunsAs);
    if (!isFileName(to.program)) description.fault(kMalformed, keys::kProgram);
    if (!isFileName(to.bundle)) to.faults.push_back({kMalformed, {}});
    if (to.isSystem) readSandbox(to, description);
    if (runsAs == keys::kUser) refuse(description, {keys::kNeeds, keys::kWrites});
}

void readWhatFacesShow(ActionDescription& to, DescriptionWords& description) {
    if (!description.has(keys::kFormat)) description.fault(kMissing, keys::kFormat);
    if (description.has(keys::kFormat) && description.number(keys::kFormat) != keys::kKnownFormat)
        description.fault(kFormat, keys::kFormat);
    if (const Value& doubled = description[keys::kDoubled]; doubled.isText())
        description.fault(kDoubled, plainText(doubled.text()));
    description.require(keys::kClass);
    description.require(keys::kNames);
    description.allowOnly({keys::kFormat, keys::kDoubled, keys::kType, keys::kNames, keys::kSays, keys::kIsBase,
                           keys::kWakesUp, keys::kStartsUp, keys::kOptions, keys::kProgram, keys::kRunsAs,
                           keys::kTimeLimit, keys::kMakeUp, keys::kNeeds, keys::kWrites},
                          keys::kPrefix);
    to.says = description.texts(keys::kSays);
    to.isBase = description.flag(keys::kIsBase).value_or(false);
    to.wakesUp = flagRule(description, keys::kWakesUp);
    to.startsUp = flagRule(description, keys::kStartsUp);
    readOptions(to, description);
}

}  // namespace

ActionDescription ActionDescription::from(std::string bundle, const Value& dictionary) {
    ActionDescription read;
    read.bundle = std::move(bundle);
    DescriptionWords description(dictionary, {}, read.faults);
    read.names = description.texts(keys::kNames);
    if (!isDescribed(description)) read.faults.clear();  // as such modules were always taken
    read.type = description.text(keys::kType);
    if (read.type.empty()) {
        read.faults.assign(1, {kNoWords, {}});
        return read;
    }
    if (isDescribed(description)) {
        description.name(keys::kType);
        readWhatFacesShow(read, description);
    }
    if (doesTheDaemonItself(read.type))
        refuse(description,
               {keys::kProgram, keys::kRunsAs, keys::kTimeLimit, keys::kMakeUp, keys::kNeeds, keys::kWrites});
    else
        readProgram(read, description);
    if (!read.isSound()) read.options.clear();
    return read;
}

Value informationDictionary(std::string_view bytes) {
    if (bytes.size() > keys::kMostBytes) return {};
    Value dictionary = decodePropertyList(bytes, keys::kMostBytes);
    std::string doubled;
    if (dictionary.isAbsent()) dictionary = decodePropertyListText(bytes, &doubled);
    if (!dictionary.isDictionary()) return {};
    return doubled.empty() ? dictionary : dictionary.with(keys::kDoubled, doubled);
}

ActionDescription ActionDescription::read(std::string bundle, std::string_view bytes) {
    const Value dictionary = informationDictionary(bytes);
    if (dictionary.isPresent()) return from(std::move(bundle), dictionary);
    ActionDescription unreadable;
    unreadable.bundle = std::move(bundle);
    unreadable.faults.push_back({kUnreadable, {}});
    return unreadable;
}

}  // namespace quorel
