#include "daemon/acting/SchedulerInterface.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "ProductVersion.h"
#include "linux/bus/BusValues.h"
#include "model/PlainText.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

namespace keys = wire::keys;
namespace names = wire::scheduler;

Value valueOf(const Upcoming& upcoming) {
    Dictionary value{{keys::kToken, upcoming.token},
                     {keys::kDue, upcoming.due},
                     {keys::kAt, upcoming.at},
                     {keys::kAction, plainText(upcoming.schedule->action)},
                     {keys::kStep, nameOf(upcoming.step)}};
    if (upcoming.until != 0) value.set(wire::keys::kUntil, upcoming.until);
    if (upcoming.schedule->restarts) value.set(keys::kRestart, true);
    if (!upcoming.by.empty()) value.set(keys::kBy, upcoming.by);
    if (upcoming.hold) {
        value.set(keys::kHold, upcoming.hold.kind);
        value.set(keys::kWho, upcoming.hold.who);
        value.set(keys::kWhy, upcoming.hold.why);
    }
    return value;
}

Value valueOf(const Pause& pause) {
    return Dictionary{{keys::kToken, pause.token()}, {keys::kFrom, pause.from}, {keys::kUntil, pause.until},
                      {keys::kBrief, pause.isBrief}, {keys::kBy, pause.by},     {keys::kCount, pause.count}};
}

Value valueOf(std::optional<Instant> armed, const ComputerAlarms::Obstacle& obstacle) {
    Dictionary value;
    if (armed) value.set(keys::kAt, *armed);
    if (!obstacle.fault.empty()) value.set(keys::kFault, obstacle.fault);
    if (!obstacle.reason.empty()) value.set(keys::kReason, plainText(obstacle.reason));
    if (obstacle.others) value.set(keys::kOthers, *obstacle.others);
    return value;
}

Value valueOf(const ScheduleFault& fault) {
    return Dictionary{{keys::kNumber, static_cast<std::int64_t>(fault.number)},
                      {keys::kAction, plainText(fault.action)},
                      {keys::kReason, fault.reason}};
}

/// How many the caller wants, within the longest answer.
std::size_t wanted(sd_bus_message* call, unsigned most) {
    std::uint32_t number = 0;
    sd_bus_message_read(call, "u", &number);
    return std::min<std::uint32_t>(number, most);
}

}  // namespace

/// Answered only while answers get away: they are long, and others', to saves as well, would wait behind them.
template <auto kAnswer>
int SchedulerInterface::read(sd_bus_message* call, void* self, sd_bus_error* error) {
    const auto& scheduler = *static_cast<SchedulerInterface*>(self);
    if (scheduler._callers.areBehind()) return sd_bus_error_set(error, wire::kBusy, "Too much is asked at once.");
    return (scheduler.*kAnswer)(call);
}

SchedulerInterface::SchedulerInterface(Callers& callers, SchedulerHost& host, const PlanInPlace& plan)
    : _callers(callers), _host(host), _plan(plan) {
    static constexpr auto kOpen = SD_BUS_VTABLE_UNPRIVILEGED;
    static constexpr sd_bus_vtable kMembers[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_ARGS(names::kUpcoming, SD_BUS_ARGS("u", most), SD_BUS_RESULT("aa{sv}", occurrences),
                                &SchedulerInterface::read<&SchedulerInterface::upcoming>, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kOutcomes, SD_BUS_ARGS("u", most), SD_BUS_RESULT("aa{sv}", outcomes),
                                &SchedulerInterface::read<&SchedulerInterface::outcomes>, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kStatus, SD_BUS_NO_ARGS, SD_BUS_RESULT("a{sv}", status),
                                &SchedulerInterface::read<&SchedulerInterface::status>, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kModules, SD_BUS_NO_ARGS, SD_BUS_RESULT("aa{sv}", modules),
                                &SchedulerInterface::read<&SchedulerInterface::modules>, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kSkip, SD_BUS_ARGS("s", token), SD_BUS_NO_RESULT, &SchedulerInterface::skip,
                                kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kUnskip, SD_BUS_ARGS("s", token), SD_BUS_NO_RESULT, &SchedulerInterface::unskip,
                                kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kPostpone, SD_BUS_ARGS("s", token), SD_BUS_NO_RESULT,
                                &SchedulerInterface::postpone, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kPostponeBy, SD_BUS_ARGS("s", token, "x", seconds), SD_BUS_NO_RESULT,
                                &SchedulerInterface::postpone, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kTry, SD_BUS_ARGS("ay", schedule), SD_BUS_NO_RESULT, &SchedulerInterface::tryNow,
                                kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kPauses, SD_BUS_NO_ARGS, SD_BUS_RESULT("aa{sv}", pauses),
                                &SchedulerInterface::read<&SchedulerInterface::pauses>, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kPause, SD_BUS_ARGS("x", from, "x", until), SD_BUS_RESULT("a{sv}", pause),
                                &SchedulerInterface::pause, kOpen),
        SD_BUS_METHOD_WITH_ARGS(names::kResume, SD_BUS_ARGS("s", token), SD_BUS_NO_RESULT, &SchedulerInterface::resume,
                                kOpen),
        SD_BUS_SIGNAL_WITH_ARGS(names::kChanged, SD_BUS_NO_ARGS, 0),
        SD_BUS_VTABLE_END};
    _object = addObject(callers.connection(), names::kPath, names::kInterface, kMembers, this);
}

void SchedulerInterface::changed() {
    sd_bus_emit_signal(_callers.connection(), names::kPath, names::kInterface, names::kChanged, "");
}

int SchedulerInterface::upcoming(sd_bus_message* call) const {
    Array values;
    for (const Upcoming& one : _host.scheduler().upcoming(wanted(call, names::kMostUpcoming)))
        values.push_back(_host.named(valueOf(one)));
    return replyDictionaries(call, values);
}

int SchedulerInterface::outcomes(sd_bus_message* call) const {
    const Array& all = _host.scheduler().outcomes();
    const auto number = std::min(wanted(call, names::kMostOutcomes), all.size());
    Array last;
    for (std::size_t i = all.size() - number; i < all.size(); ++i) last.push_back(_host.named(all[i]));
    return replyDictionaries(call, last);
}

int SchedulerInterface::status(sd_bus_message* call) const {
    const Scheduler& scheduler = _host.scheduler();
    const ComputerAlarms::Obstacle waking = _host.alarms().waking();
    Array faults;
    for (const ScheduleFault& fault : scheduler.faults()) {
        if (faults.size() == names::kMostUpcoming) break;
        faults.push_back(_host.named(valueOf(fault)));
    }
    Dictionary status{{keys::kVersion, product::kVersion},
                      {keys::kActs, waking.fault != wire::alarm_fault::kOff},
                      {keys::kWakeAlarm, valueOf(scheduler.armedWake(), waking)},
                      {keys::kStartupAlarm, valueOf(scheduler.armedStartup(), _host.alarms().starting())},
                      {keys::kFaults, faults}};
    if (!_plan.fault().empty()) status.set(keys::kPlanFault, plainText(_plan.fault()));
    if (!_host.stateFault().empty()) status.set(keys::kStateFault, plainText(_host.stateFault()));
    if (scheduler.isClockBehind()) status.set(keys::kClock, wire::kClockBehind);
    for (const auto& [key, former] : wire::kFormerKeys) status.set(former, status[key]);
    return replyDictionary(call, status);
}

int SchedulerInterface::pauses(sd_bus_message* call) const {
    Array pauses;
    for (const Pause& one : _host.pauses()) pauses.push_back(valueOf(one));
    return replyDictionaries(call, pauses);
}

/// With what comes first when it is over, and is not skipped.
Dictionary SchedulerInterface::answerOf(const Pause& pause) const {
    Dictionary answer = valueOf(pause).dictionary();
    const std::vector<Upcoming> coming = _host.scheduler().upcoming(rules::kMostOpen + 1, pause.until);
    const auto next = std::ranges::find_if(coming, [](const Upcoming& one) { return one.step != Step::kSkipped; });
    if (next != coming.end()) answer.set(keys::kNext, _host.named(valueOf(*next)));
    return answer;
}

int SchedulerInterface::modules(sd_bus_message* call) const {
    Array modules;
    for (const ActionDescription& one : _host.modules().modules()) modules.push_back(one.value());
    return replyDictionaries(call, modules);
}

}  // namespace quorel
