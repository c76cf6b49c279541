#include "planning/ScheduleWords.h"

#include <algorithm>
#include <set>
#include <utility>

#include "model/ActionParameters.h"
#include "model/Dictionary.h"
#include "model/Lines.h"
#include "model/PropertyList.h"
#include "model/PropertyListContent.h"
#include "model/Schedule.h"
#include "model/TimeOfDay.h"
#include "planning/Json.h"

namespace quorel {

namespace {

namespace keys = schedule_keys;

constexpr std::string_view kOn = "on", kOff = "off", kYes = "yes", kNo = "no", kRest = "--", kAt = "at",
                           kEvery = "every";
constexpr std::string_view kYesOrNo = "yes, no";
constexpr int kAroundSchedule = 2;  // the preferences and their list

bool isOn(const Value& dictionary, std::string_view key) {
    return dictionary[key].intValue() != 0;
}

bool isKey(std::string_view key) {
    return key == keys::kIsEnabled || key == keys::kActionType || key == keys::kActionHour ||
           key == keys::kActionMinute || key == keys::kActionParameters ||
           std::ranges::find(keys::kActiveOnDays, key) != keys::kActiveOnDays.end();
}

/// Whether words say all of it.
bool isSayable(const Value& schedule, const ActionWords& actions) {
    const Dictionary& entries = schedule.dictionary();
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (!isKey(entries.keyAt(i))) return false;
    const int hour = schedule[keys::kActionHour].intValue(), minute = schedule[keys::kActionMinute].intValue();
    const Value& parameters = schedule[keys::kActionParameters];
    return schedule[keys::kActionType].isText() && !actions.nameOf(schedule[keys::kActionType].text()).empty() &&
           hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && (parameters.isAbsent() || parameters.isDictionary());
}

/// So many levels are around it where it is stored.
bool isTooDeep(Value value, int levels) {
    for (; levels > 0; --levels) value = Array{std::move(value)};
    return !encodePropertyList(value);
}

/// What stands behind "--" where that says all options which take such words; empty otherwise.
std::vector<std::string> trailingWords(const ActionDescription& description, const Value& own) {
    std::vector<std::string> words;
    Dictionary said;
    for (const Option& option : description.options) {
        const std::string& text = own[option.key].text();
        if (!option.takesWords || text.empty()) continue;
        said.set(option.key, text);
        const auto lines = option.kind == OptionKind::kLines ? linesIn(text) : std::vector{text};
        words.insert(words.end(), lines.begin(), lines.end());
    }
    const auto read = description.withWords(Dictionary(), words);
    return read && *read == Value(said) ? words : std::vector<std::string>();
}

std::vector<std::string> optionWordsOf(const ActionDescription* description, Value parameters) {
    std::vector<std::string> words, trailing;
    const Value own = description ? description->completed(parameters) : parameters;
    const auto say = [&](std::string_view word, std::string_view value) {
        words.push_back(std::string(word) + "=" + std::string(value));
    };
    const auto sayFlag = [&](std::string_view word, std::string_view key, bool standard) {
        if (isOn(own, key) != standard) say(word, standard ? kNo : kYes);
        parameters = parameters.with(key, {});
    };
    sayFlag(ActionWords::kWakeUp, parameters::kNeedsWakeUp, description && description->wakesUp.standard);
    sayFlag(ActionWords::kStartUp, parameters::kNeedsStartup, description && description->startsUp.standard);
    if (!description) return words;
    trailing = trailingWords(*description, own);
    for (const Option& option : description->options) {
        const std::string word = ActionWords::optionWord(*description, option);
        const Value& value = own[option.key];
        const std::string typed = option.wordOf(value);
        const bool isStandard = value == option.completed(option.standard);
        const bool isTrailing = option.takesWords && !trailing.empty() && !value.text().empty();
        const bool isSaid = !word.empty() && option.valueOf(typed) == value;
        if (!isStandard && !isTrailing && isSaid) say(word, typed);
        if (isStandard || isTrailing || isSaid) parameters = parameters.with(option.key, {});
    }
    if (parameters.dictionary().size() > 0) say(ActionWords::kParameters, jsonText(parameters));
    if (!trailing.empty()) words.emplace_back(kRest);
    words.insert(words.end(), trailing.begin(), trailing.end());
    return words;
}

/// Reads the words of one Schedule.
class Reading {
public:
    Reading(const ActionWords& actions, std::vector<TextFault>& faults) : _actions(actions), _faults(faults) {}

    /// `stored` is absent for a new one.
    Value read(const Value& stored, std::span<const Word> words) {
        _isNew = stored.isAbsent();
        const std::size_t before = _faults.size();
        for (const Word& word : words)
            if (!isPropertyListText(word.text)) refuse(word, text_fault::kText);
        if (_faults.size() > before) return {};
        if (words.size() == 1 && words[0].text.starts_with('{')) return readWhole(words[0]);
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (words[i].text == kRest) {
                _rest = words.subspan(i);
                break;
            }
            take(words[i]);
        }
        if (_isNew) demand(words);
        if (_type) tellOptions(before);
        if (_faults.size() > before) return {};
        const Value schedule = applied(stored);
        return _faults.size() > before ? Value() : schedule;
    }

private:
    void refuse(const Word& word, std::string_view code, std::string allowed = {}) {
        _faults.push_back({code, word.text, std::move(allowed), word.column});
    }

    Value readWhole(const Word& word) {
        const JsonReading reading = readJson(word.text);
        const bool isRead = reading.value.isDictionary();
        if (isRead && isTooDeep(reading.value, kAroundSchedule)) refuse(word, text_fault::kDeep);
        if (isRead) return reading.value;
        refuse(word, text_fault::kJson);
        _faults.back().column += characterCount(std::string_view(word.text).substr(0, reading.fault));
        return {};
    }

    template <class T>
    void say(std::optional<T>& place, T value, const Word& word) {
        if (place) return refuse(word, text_fault::kTwice);
        place = std::move(value);
    }

    void take(const Word& word) {
        const std::string& text = word.text;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos && equals > 0) return _options.push_back(word);
        if (text == kAt || text == kEvery) return;  // as people say it
        if (text == kOn || text == kOff) return say(_isEnabled, text == kOn, word);
        if (const auto minute = minuteOfWord(text)) return say(_minute, *minute, word);
        if (const auto days = daysOfWord(text)) return takeDays('=', *days);
        if (text.starts_with('+') || text.starts_with('-')) {
            const auto days = daysOfWord(std::string_view(text).substr(1));
            return days ? takeDays(text[0], *days) : refuse(word, text_fault::kDays);
        }
        if (auto type = _actions.typeOf(text)) return say(_type, std::move(*type), word);
        if (!text.empty() && text[0] >= '0' && text[0] <= '9') return refuse(word, text_fault::kTime);
        if (text.find(',') != std::string::npos) return refuse(word, text_fault::kDays);
        refuse(word, text_fault::kAction, _actions.names());
    }

    void takeDays(char how, DaySet days) {
        // "mon tue" are both.
        const bool isFurther =
            how == '=' && std::ranges::find(_days, '=', &std::pair<char, DaySet>::first) != _days.end();
        _days.emplace_back(isFurther ? '+' : how, days);
    }

    void demand(std::span<const Word> words) {
        // What was refused may have been meant for it.
        const auto wasTried = [this](std::string_view code) {
            return std::ranges::find(_faults, code, &TextFault::code) != _faults.end();
        };
        const Word begin{{}, words.empty() ? 1 : words.front().column};
        if (!_minute && !wasTried(text_fault::kTime)) refuse(begin, text_fault::kNoTime);
        if (!_type && !wasTried(text_fault::kAction)) refuse(begin, text_fault::kNoAction, _actions.names());
    }

    /// Where the action is known, words that mean nothing were to be its options.
    void tellOptions(std::size_t before) {
        for (TextFault& fault : std::span(_faults).subspan(before))
            if (fault.code == text_fault::kAction)
                fault = {text_fault::kWord, fault.word, ActionWords::optionWords(_actions.description(*_type)),
                         fault.column};
    }

    Value applied(const Value& stored) {
        Value schedule = stored;
        if (_isNew) _isEnabled = _isEnabled.value_or(true);
        if (_isEnabled) setFlag(schedule, keys::kIsEnabled, *_isEnabled);
        if (_minute) setNumber(schedule, keys::kActionHour, *_minute / 60);
        if (_minute) setNumber(schedule, keys::kActionMinute, *_minute % 60);
        DaySet days = _isNew && _days.empty() ? kAllDays : daysOf(schedule);
        for (const auto& [how, some] : _days) days = how == '=' ? some : how == '+' ? days | some : days & ~some;
        if (_isNew || !_days.empty())
            for (std::size_t day = 0; day < keys::kActiveOnDays.size(); ++day)
                setFlag(schedule, keys::kActiveOnDays[day], (days >> day & 1U) != 0);
        const bool isOther = _type && *_type != stored[keys::kActionType].text();
        if (isOther) schedule = schedule.with(keys::kActionType, *_type);
        const std::string& type = schedule[keys::kActionType].text();
        const ActionDescription* description = _actions.description(type);
        Value parameters = schedule[keys::kActionParameters];
        if (isOther) parameters = description ? description->standards() : Value();
        setOptions(parameters, description);
        return schedule.with(keys::kActionParameters, parameters);
    }

    // What reads the same already stays as it is stored.

    bool isLacking(const Value& dictionary, std::string_view key) const { return _isNew && dictionary[key].isAbsent(); }

    void setNumber(Value& dictionary, std::string_view key, int number) const {
        if (isLacking(dictionary, key) || dictionary[key].intValue() != number)
            dictionary = dictionary.with(key, number);
    }

    void setFlag(Value& dictionary, std::string_view key, bool flag) const {
        if (isLacking(dictionary, key) || isOn(dictionary, key) != flag)
            dictionary = dictionary.with(key, flag ? 1 : 0);
    }

    void setOptions(Value& parameters, const ActionDescription* description) {
        std::set<std::string> said;
        for (const Word& word : _options) {
            const std::size_t equals = word.text.find('=');
            const std::string name = word.text.substr(0, equals), value = word.text.substr(equals + 1);
            if (!said.insert(name).second)
                refuse(word, text_fault::kTwice);
            else if (name == ActionWords::kWakeUp)
                setNeed(parameters, parameters::kNeedsWakeUp, description ? &description->wakesUp : nullptr, value,
                        word);
            else if (name == ActionWords::kStartUp)
                setNeed(parameters, parameters::kNeedsStartup, description ? &description->startsUp : nullptr, value,
                        word);
            else if (name == ActionWords::kParameters)
                setParameters(parameters, value, word);
            else
                setOption(parameters, description, name, value, word);
        }
        setRest(parameters, description);
    }

    void setNeed(Value& parameters, std::string_view key, const FlagRule* rule, std::string_view value,
                 const Word& word) {
        if (value != kYes && value != kNo) return refuse(word, text_fault::kValue, std::string(kYesOrNo));
        const bool flag = value == kYes;
        if (rule && rule->isFixed && rule->standard != flag) return refuse(word, text_fault::kFixed);
        setFlag(parameters, key, flag);
    }

    void setParameters(Value& parameters, const std::string& value, const Word& word) {
        const JsonReading reading = readJson(value);
        if (!reading.value.isDictionary()) return refuse(word, text_fault::kJson);
        if (isTooDeep(reading.value, kAroundSchedule + 1)) return refuse(word, text_fault::kDeep);
        const Dictionary& entries = reading.value.dictionary();
        if (!parameters.isDictionary()) parameters = Dictionary();
        for (std::size_t i = 0; i < entries.size(); ++i)
            parameters = parameters.with(entries.keyAt(i), entries.valueAt(i));
    }

    void setOption(Value& parameters, const ActionDescription* description, const std::string& name,
                   std::string_view typed, const Word& word) {
        const Option* option = description ? ActionWords::optionOf(*description, name) : nullptr;
        if (!option) return refuse(word, text_fault::kOption, ActionWords::optionWords(description));
        const auto minute = option->kind == OptionKind::kTime ? minuteOfWord(typed) : std::nullopt;
        const std::optional<Value> value = option->valueOf(minute ? timeOfDay(*minute) : typed);
        if (!value) return refuse(word, text_fault::kValue, option->allowed());
        const Value& now = parameters[option->key];
        if (option->completed(now) != *value) parameters = parameters.with(option->key, *value);
    }

    void setRest(Value& parameters, const ActionDescription* description) {
        if (_rest.empty()) return;
        std::vector<std::string> words;
        for (const Word& word : _rest.subspan(1)) words.push_back(word.text);
        const auto read = description ? description->withWords(parameters, words) : std::nullopt;
        if (!read) return refuse(_rest.front(), text_fault::kWords);
        parameters = *read;
    }

    const ActionWords& _actions;
    std::vector<TextFault>& _faults;
    bool _isNew = false;
    std::optional<int> _minute;
    std::optional<bool> _isEnabled;
    std::vector<std::pair<char, DaySet>> _days;
    std::optional<std::string> _type;
    std::vector<Word> _options;
    std::span<const Word> _rest;  // with "--"
};

}  // namespace

DaySet daysOf(const Value& schedule) {
    DaySet days = 0;
    for (std::size_t day = 0; day < keys::kActiveOnDays.size(); ++day)
        if (isOn(schedule, keys::kActiveOnDays[day])) days |= 1U << day;
    return days;
}

std::vector<std::string> wordsOf(const Value& schedule, const ActionWords& actions) {
    if (!isSayable(schedule, actions)) return {jsonText(schedule)};
    const int hour = schedule[keys::kActionHour].intValue(), minute = schedule[keys::kActionMinute].intValue();
    const std::string& type = schedule[keys::kActionType].text();
    std::vector<std::string> words = {timeOfDay(60 * hour + minute), dayWord(daysOf(schedule)), actions.nameOf(type)};
    if (!isOn(schedule, keys::kIsEnabled)) words.emplace_back(kOff);
    const auto options = optionWordsOf(actions.description(type), schedule[keys::kActionParameters]);
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

std::optional<TextFault> programFault(const Value& schedule, std::span<const Word> words, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[keys::kActionType].text());
    const Option* option = description ? description->option(parameters::kProgram) : nullptr;
    const std::string& program = schedule[keys::kActionParameters][parameters::kProgram].text();
    if (!option || !option->isFile || isWholePath(program)) return {};
    const auto said = std::ranges::find_if(words, [&](const Word& word) { return word.text.ends_with(program); });
    const std::size_t column = said == words.end() ? 1 : said->column;
    return TextFault{program.empty() ? text_fault::kNoProgram : text_fault::kProgram, program, {}, column};
}

std::string lineOf(const Value& schedule, const ActionWords& actions) {
    std::string line;
    for (const std::string& word : wordsOf(schedule, actions)) line.append(line.empty() ? "" : " ") += shellWord(word);
    return line;
}

Value scheduleOf(std::span<const Word> words, const ActionWords& actions, std::vector<TextFault>& faults) {
    return Reading(actions, faults).read({}, words);
}

Value changedSchedule(const Value& schedule, std::span<const Word> words, const ActionWords& actions,
                      std::vector<TextFault>& faults) {
    return Reading(actions, faults).read(schedule, words);
}

}  // namespace quorel
