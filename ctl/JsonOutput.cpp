#include "ctl/JsonOutput.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "ctl/ScheduleText.h"
#include "model/Schedule.h"
#include "planning/Json.h"
#include "planning/ScheduleWords.h"

namespace quorel {

namespace {

constexpr std::string_view kParameters = "Parameters";  // other people's keys
constexpr std::array<std::string_view, 8> kTimes = {"At", "Due", "From", "Next", "Others", "Since", "To", "Until"};

std::string spelt(std::string_view key) {
    std::string result;
    bool isFirst = true;
    for (const char c : key) {
        if (isFirst && c >= 'A' && c <= 'Z')
            result += static_cast<char>(c - 'A' + 'a');
        else if (c != ' ')
            result += c;
        isFirst = false;
    }
    return result;
}

std::string isoText(Instant instant) {
    const std::time_t time = instant;
    std::tm local{};
    std::array<char, 64> text{};
    if (!localtime_r(&time, &local)) return {};
    std::string iso(text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S%z", &local));
    return iso.insert(iso.size() - 2, ":");
}

Value speltAlike(const Value& value) {
    if (value.isArray()) {
        Array array;
        for (const Value& one : value.array()) array.push_back(speltAlike(one));
        return array;
    }
    if (!value.isDictionary()) return value;
    Dictionary result;
    const Dictionary& entries = value.dictionary();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string& key = entries.keyAt(i);
        const Value& entry = entries.valueAt(i);
        const bool isTime = entry.isInteger() && std::ranges::find(kTimes, key) != kTimes.end();
        if (!isTime) {
            result.set(spelt(key), key == kParameters ? entry : speltAlike(entry));
        } else if (entry.integer() != 0) {  // 0 is none
            result.set(spelt(key), isoText(entry.integer()));
            result.set(spelt(key) + "Seconds", entry);
        }
    }
    return result;
}

}  // namespace

std::string jsonOutput(const Dictionary& answer) {
    std::string text = jsonText(speltAlike(answer));
    const std::string format = "\"format\":" + std::to_string(kJsonFormat);
    return text.insert(1, answer.size() == 0 ? format : format + ",");
}

Value scheduleValue(const Value& schedule, std::size_t index, const Forecast& forecast, const ActionWords& actions,
                    Instant now) {
    const std::string& type = schedule[schedule_keys::kActionType].text();
    const std::string line = lineOf(schedule, actions);
    Array days;
    for (DaySet left = daysOf(schedule); left != 0; left &= left - 1) days.push_back(dayWord(left & ~(left - 1)));
    Dictionary value{{"Number", static_cast<std::int64_t>(index + 1)},
                     {"Enabled", schedule[schedule_keys::kIsEnabled].intValue() != 0},
                     {"Time", timeOf(schedule)},
                     {"Days", days},
                     {"Action", type},
                     {"Name", nameOfAction(schedule, actions)},
                     {"Line", line}};
    if (const Value& own = schedule[schedule_keys::kActionParameters]; own.isPresent()) value.set(kParameters, own);
    if (const std::string detail = detailOf(schedule, actions); !detail.empty()) value.set("Detail", detail);
    if (const auto next = forecast.next(index, now)) value.set("Next", *next);
    if (const Value& fault = forecast.fault(index); fault.isPresent()) value.set("Fault", fault[wire::keys::kReason]);
    return value;
}

}  // namespace quorel
