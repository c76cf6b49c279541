#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/Value.h"
#include "scheduler/World.h"

namespace quorel {

/// In the order in which those of one minute run.
enum class ActionKind { kWakeUp, kStayAwake, kModule, kShutDown, kSleep };

/// What one enabled Schedule means, however it is written down.
struct ScheduleReading {
    int hour = 0;
    int minute = 0;
    std::array<bool, 7> days{};  ///< Monday first
    ActionKind kind = ActionKind::kModule;
    std::string action;   ///< the action type
    Value parameters;     ///< a dictionary, or absent
    bool wakes = false;   ///< from sleep
    bool starts = false;  ///< from off
    SleepKind sleepKind = SleepKind::kSuspend;
    int until = 0;             ///< of staying awake: the minute of the day, never that at which it begins
    bool restarts = false;     ///< a shut-down that starts the computer again
    Seconds idle = 0;          ///< only when nobody has used the computer that long; 0: always
    Seconds makeUp = 0;        ///< how late a missed one may still run; 0: not at all
    bool isTrial = false;      ///< see asTrial
    std::uint64_t digest = 0;  ///< of time, action and parameters; of a trial the inverse

    bool isPower() const { return kind == ActionKind::kShutDown || kind == ActionKind::kSleep; }
};

/// Why a Schedule of the list never runs, but when it is tried, or, for a denied kind of sleep, not as things stand.
struct ScheduleFault {
    std::size_t number = 0;  ///< its place in the list, from 1
    std::string action;
    std::string_view reason;  ///< one of `wire::schedule_fault`
    friend bool operator==(const ScheduleFault&, const ScheduleFault&) = default;
};

struct ListReading {
    std::vector<std::shared_ptr<const ScheduleReading>> schedules;  ///< those that can run, in list order
    std::vector<ScheduleFault> faults;  ///< of enabled ones; without a day or of a denied kind, they are in both
};

/// Reads whatever stands under "Schedule Array"; anything but an array is an empty list.
ListReading readScheduleList(const Value& list, const Actions& actions, const DeniedKinds& denied = {});

/// The same, to be tried once, of no list. The plan may have it at that very second, so that it goes by a digest of its
/// own. Whoever tries it waits for it: it is not made up for.
std::shared_ptr<const ScheduleReading> asTrial(ScheduleReading schedule);

}  // namespace quorel
