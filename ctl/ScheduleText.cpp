#include "ctl/ScheduleText.h"

#include <array>
#include <cstring>
#include <ctime>

#include "model/Schedule.h"
#include "model/TimeOfDay.h"
#include "planning/ScheduleWords.h"
#include "words/Language.h"
#include "words/OutcomeText.h"

namespace quorel {

namespace {

/// Which texts say what of which fault; "{1}" is what stands there, "{2}" what may.
struct Sentence {
    std::string_view code;
    const char* text;
};

constexpr const char* marked(const char* text) {
    return text;
}

constexpr Sentence kSentences[] = {
    {text_fault::kTime, marked("\"{1}\" is no time of day; such are 23:15, 7pm, noon.")},
    {text_fault::kDays, marked("\"{1}\" names no days; such are mon-fri or sat,sun or daily or never.")},
    {text_fault::kAction, marked("\"{1}\" is no action, nor anything else. Actions are: {2}.")},
    {text_fault::kWord,
     marked("\"{1}\" is no time and no days. Options are written with \"=\": {2}. A text, or a program with "
            "its arguments, stands behind \"--\".")},
    {text_fault::kOption, marked("\"{1}\": there is no such option here. There are: {2}.")},
    {text_fault::kValue, marked("\"{1}\" cannot be taken. Allowed: {2}.")},
    {text_fault::kFixed, marked("\"{1}\": this action leaves no choice there.")},
    {text_fault::kTwice, marked("\"{1}\" says it a second time.")},
    {text_fault::kNoTime, marked("The time is missing, as 23:15.")},
    {text_fault::kNoAction, marked("The action is missing. Actions are: {2}.")},
    {text_fault::kWords, marked("The action takes no such words behind \"--\".")},
    {text_fault::kProgram, marked("\"{1}\" is no whole path of a program, as /usr/bin/rsync or ~/bin/backup.sh.")},
    {text_fault::kNoProgram, marked("The program is missing; it stands behind \"--\" with its arguments.")},
    {text_fault::kQuote, marked("A quotation mark is not closed.")},
    {text_fault::kJson, marked("This is no JSON of a dictionary.")},
    {text_fault::kDeep, marked("This JSON is nested too deeply to be stored.")},
    {text_fault::kEmpty,
     marked("This says nothing. A plan without schedules has the line that begins with \"options\".")},
    {text_fault::kText, marked("\"{1}\" is not in UTF-8, or has control characters.")},
};

/// "Mon", in the user's language; 0 is Monday.
std::string dayName(std::size_t day) {
    std::tm date{};
    date.tm_wday = static_cast<int>((day + 1) % 7);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%a", &date)};
}

}  // namespace

std::string nameOfAction(const Value& schedule, const ActionWords& actions) {
    const std::string& type = schedule[schedule_keys::kActionType].text();
    const ActionDescription* description = actions.description(type);
    return description ? inLanguage(description->names, usersLanguage()) : actionName(type);
}

std::string detailOf(const Value& schedule, const ActionWords& actions) {
    const ActionDescription* description = actions.description(schedule[schedule_keys::kActionType].text());
    if (!description) return {};
    const std::string language = usersLanguage();
    std::string line = description->line(schedule[schedule_keys::kActionParameters], language);
    if (line == inLanguage(description->says, language) || line == inLanguage(description->names, language)) return {};
    // It stands behind something here: its capital goes, where it was put there for a beginning.
    for (const Option& option : description->options) {
        const std::string& part = inLanguage(option.says, language);
        const std::string start = part.substr(0, part.find("%@"));
        const std::size_t letter = start.empty() || static_cast<unsigned char>(start[0]) < 0x80 ? 1 : 2;
        if (start.size() > letter && line.compare(letter, start.size() - letter, start, letter) == 0)
            return line.replace(0, letter, start, 0, letter);
    }
    return line;
}

std::string daysText(DaySet days) {
    if (days == kAllDays) return translated("daily");
    if (days == 0) return translated("on no day");
    std::string text;
    for (const auto& [first, length] : runsOf(days)) {
        text.append(text.empty() ? "" : ", ").append(dayName(first));
        if (length > 1) text.append("–").append(dayName(first + length - 1));
    }
    return text;
}

std::string timeOf(const Value& schedule) {
    const int hour = schedule[schedule_keys::kActionHour].intValue();
    const int minute = schedule[schedule_keys::kActionMinute].intValue();
    const bool isTime = hour >= 0 && hour < 24 && minute >= 0 && minute < 60;
    return isTime ? timeOfDay(60 * hour + minute) : std::to_string(hour) + ":" + std::to_string(minute);
}

std::string summaryOf(const Value& schedule, const ActionWords& actions) {
    const std::string detail = detailOf(schedule, actions);
    return nameOfAction(schedule, actions) + ", " + daysText(daysOf(schedule)) + " " + timeOf(schedule) +
           (detail.empty() ? "" : ", " + detail);
}

std::string sentenceOf(const TextFault& fault) {
    for (const auto& [code, text] : kSentences)
        if (code == fault.code) return filled(translated(text), {fault.word, fault.allowed});
    return std::string(fault.code);
}

}  // namespace quorel
