#include "scheduler/ScheduleReading.h"

#include <algorithm>
#include <bit>

#include "model/ActionParameters.h"
#include "model/Dictionary.h"
#include "model/Fnv1a.h"
#include "model/PlainText.h"
#include "model/Schedule.h"
#include "model/TimeOfDay.h"
#include "model/Wire.h"
#include "scheduler/Occurrence.h"
#include "scheduler/Outcome.h"

namespace quorel {

namespace {

class Digest {
public:
    std::uint64_t result() const { return _hash.result(); }

    Digest& add(std::string_view bytes) {
        addNumber(bytes.size());
        _hash.add(bytes);
        return *this;
    }

    Digest& addNumber(std::uint64_t number) {
        for (int i = 0; i < 8; ++i) {
            const char byte = static_cast<char>(number >> (8 * i));
            _hash.add({&byte, 1});
        }
        return *this;
    }

    Digest& add(const Value& value) {
        if (value.isBoolean()) addNumber('b').addNumber(static_cast<std::uint64_t>(value.intValue()));
        if (value.isInteger()) addNumber('i').addNumber(static_cast<std::uint64_t>(value.integer()));
        if (value.isReal()) addNumber('r').addNumber(std::bit_cast<std::uint64_t>(value.real()));
        if (value.isDate()) addNumber('t').addNumber(std::bit_cast<std::uint64_t>(value.date().secondsSinceReference));
        if (value.isText()) addNumber('s').add(std::string_view(value.text()));
        if (value.isData()) {
            const Data& data = value.data();
            addNumber('d').add(std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
        }
        if (value.isArray()) {
            addNumber('a').addNumber(value.array().size());
            for (const Value& element : value.array()) add(element);
        }
        if (value.isDictionary()) {
            const Dictionary& dictionary = value.dictionary();
            addNumber('m').addNumber(dictionary.size());
            for (std::size_t i = 0; i < dictionary.size(); ++i) {
                add(std::string_view(dictionary.keyAt(i))).add(dictionary.valueAt(i));
            }
        }
        return *this;
    }

private:
    Fnv1a _hash;
};

ActionKind kindOf(const std::string& action) {
    if (action == schedule_keys::kSleepType) return ActionKind::kSleep;
    if (action == schedule_keys::kWakeUpType) return ActionKind::kWakeUp;
    if (action == schedule_keys::kShutDownType) return ActionKind::kShutDown;
    if (action == schedule_keys::kStayAwakeType) return ActionKind::kStayAwake;
    return ActionKind::kModule;
}

bool isOn(const Value& dictionary, std::string_view key) {
    return dictionary[key].intValue() != 0;
}

/// Suspend unless one is stored. Nothing for a word that is none of them.
std::optional<SleepKind> sleepKindOf(const Value& parameters) {
    const Value& kind = parameters[parameters::kSleepKind];
    if (kind.isAbsent() || kind.text() == parameters::kSuspend) return SleepKind::kSuspend;
    if (kind.text() == parameters::kHibernate) return SleepKind::kHibernate;
    if (kind.text() == parameters::kSuspendThenHibernate) return SleepKind::kSuspendThenHibernate;
    if (kind.text() == parameters::kAsTheSystemDoes) return SleepKind::kAsTheSystemDoes;
    return std::nullopt;
}

/// What the action's own parameters say. Sleep and shut-down never wake or start the computer and a wake-up always
/// wakes it, whatever stands there.
void readParameters(ScheduleReading& reading) {
    const Value& own = reading.parameters;
    if (reading.isPower()) {
        const Value& minutes = own[parameters::kIdleMinutes];
        const int idle = minutes.isAbsent() ? parameters::kDefaultIdleMinutes : minutes.intValue();
        const int kept = std::clamp(idle, parameters::kLeastIdleMinutes, parameters::kMostIdleMinutes);
        if (isOn(own, parameters::kOnlyWhenIdle)) reading.idle = kept * kMinute;
        reading.restarts = reading.kind == ActionKind::kShutDown && isOn(own, parameters::kRestart);
    } else {
        reading.wakes = reading.kind == ActionKind::kWakeUp || isOn(own, parameters::kNeedsWakeUp);
        reading.starts = isOn(own, parameters::kNeedsStartup);
    }
}

/// Empty where the Schedule can run.
std::string_view faultOf(ScheduleReading& reading, const Actions& actions) {
    if (reading.hour < 0 || reading.hour > 23) return wire::schedule_fault::kHour;
    if (reading.minute < 0 || reading.minute > 59) return wire::schedule_fault::kMinute;
    if (reading.kind == ActionKind::kSleep) {
        const std::optional<SleepKind> kind = sleepKindOf(reading.parameters);
        reading.sleepKind = kind.value_or(SleepKind::kSuspend);
        return kind ? std::string_view() : wire::schedule_fault::kSleepKind;
    }
    if (reading.kind == ActionKind::kStayAwake) {
        const std::optional<int> until = minuteOfDay(reading.parameters[parameters::kUntil].text());
        reading.until = until.value_or(0);
        const bool isTime = until && *until != reading.hour * 60 + reading.minute;
        return isTime ? std::string_view() : wire::schedule_fault::kUntil;
    }
    if (reading.kind != ActionKind::kModule) return {};
    const std::optional<Module> module = actions.module(reading.action);
    if (!module) return wire::schedule_fault::kAction;
    if (!module->hasProgram) return wire::schedule_fault::kProgram;
    reading.makeUp = module->makeUp;
    return {};
}

}  // namespace

ListReading readScheduleList(const Value& list, const Actions& actions, const DeniedKinds& denied) {
    ListReading result;
    std::size_t number = 0;
    for (const Value& entry : list.array()) {
        ++number;
        if (!isOn(entry, schedule_keys::kIsEnabled)) continue;
        auto reading = std::make_shared<ScheduleReading>();
        reading->hour = entry[schedule_keys::kActionHour].intValue();
        reading->minute = entry[schedule_keys::kActionMinute].intValue();
        for (std::size_t day = 0; day < 7; ++day) reading->days[day] = isOn(entry, schedule_keys::kActiveOnDays[day]);
        reading->action = entry[schedule_keys::kActionType].text();
        reading->kind = kindOf(reading->action);
        const Value& own = entry[schedule_keys::kActionParameters];
        if (own.isDictionary()) reading->parameters = own;
        readParameters(*reading);
        if (const std::string_view fault = faultOf(*reading, actions); !fault.empty()) {
            result.faults.push_back({number, plainText(reading->action), fault});
            continue;
        }
        if (std::ranges::find(reading->days, true) == reading->days.end())
            result.faults.push_back({number, plainText(reading->action), wire::schedule_fault::kDays});
        if (reading->kind == ActionKind::kSleep && denied.count(reading->sleepKind) > 0)
            result.faults.push_back({number, plainText(reading->action), wire::schedule_fault::kDenied});
        reading->digest = Digest()
                              .addNumber(static_cast<std::uint64_t>(reading->hour * 60 + reading->minute))
                              .add(std::string_view(reading->action))
                              .add(reading->parameters)
                              .result();
        result.schedules.push_back(std::move(reading));
    }
    return result;
}

std::shared_ptr<const ScheduleReading> asTrial(ScheduleReading schedule) {
    schedule.isTrial = true;
    schedule.makeUp = 0;
    schedule.digest = ~schedule.digest;
    return std::make_shared<const ScheduleReading>(std::move(schedule));
}

std::string Occurrence::token() const {
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4) digits += "0123456789abcdef"[schedule->digest >> shift & 15];
    return std::to_string(due) + "-" + digits;
}

}  // namespace quorel
