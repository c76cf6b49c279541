// What people ask of the scheduler: who may, and what comes of it.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string_view>

#include "daemon/acting/SchedulerInterface.h"
#include "kit/MOLLog.h"
#include "linux/login/Users.h"
#include "model/PropertyList.h"
#include "model/Wire.h"
#include "scheduler/Rules.h"

namespace quorel {

namespace {

constexpr const char* kGone = "There is no such occurrence any more.";
constexpr const char* kNoPause = "There is no such pause any more.";
constexpr std::size_t kMostOfASchedule = std::size_t{64} * 1024;

std::string tokenOf(sd_bus_message* call) {
    const char* token = "";
    sd_bus_message_read(call, "s", &token);
    return token;
}

/// A brief pause is no change of the plan.
const char* rightFor(const Pause& pause) {
    return pause.isBrief ? kPauseAction : kModifyPreferencesAction;
}

}  // namespace

int SchedulerInterface::skip(sd_bus_message* call, void* self, sd_bus_error* error) {
    const auto make = [](SchedulerHost& host, const std::string& token, const std::string& by) {
        return host.skip(token, by);
    };
    return static_cast<SchedulerInterface*>(self)->change(call, {kSkipAction, tokenOf(call), make}, error);
}

int SchedulerInterface::unskip(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& scheduler = *static_cast<SchedulerInterface*>(self);
    const auto make = [](SchedulerHost& host, const std::string& token, const std::string& by) {
        return host.unskip(token, by);
    };
    const std::string token = tokenOf(call);
    const auto open = scheduler._host.scheduler().upcoming(rules::kMostOpen);
    const auto skipped = std::ranges::find(open, token, &Upcoming::token);
    return scheduler.change(call, {kSkipAction, token, make, skipped == open.end() ? "" : skipped->by}, error);
}

int SchedulerInterface::postpone(sd_bus_message* call, void* self, sd_bus_error* error) {
    const std::string token = tokenOf(call);
    std::int64_t length = rules::kPostponement;
    sd_bus_message_read(call, "x", &length);  // where it is said
    const auto make = [length](SchedulerHost& host, const std::string& postponed, const std::string& by) {
        return host.postpone(postponed, by, length);
    };
    return static_cast<SchedulerInterface*>(self)->change(call, {kPostponeAction, token, make}, error);
}

int SchedulerInterface::change(sd_bus_message* call, const Change& wanted, sd_bus_error* error) {
    if (!_host.scheduler().knows(wanted.token)) return sd_bus_error_set(error, wire::kNoSuchOccurrence, kGone);
    const auto permitted = [this, wanted](HeldCall& held) {
        if (!wanted.make(_host, wanted.token, nameOfUser(held.user())))
            return held.refuse(wire::kNoSuchOccurrence, kGone);
        MOLLog("Occurrence %s: %s by user %u.", wanted.token.c_str(), wanted.right, held.user());
        held.accept();
    };
    return begin(call, {wanted.right, permitted, wanted.free});
}

int SchedulerInterface::tryNow(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& scheduler = *static_cast<SchedulerInterface*>(self);
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_bus_message_read_array(call, 'y', &bytes, &size);
    if (size > kMostOfASchedule) return sd_bus_error_set(error, wire::kCannotTry, "It takes more than 64 KiB.");
    const std::string schedule(static_cast<const char*>(bytes), size);
    // Nothing of it is looked at before that is allowed.
    const auto permitted = [&host = scheduler._host, schedule](HeldCall& held) {
        const Scheduler::Trial trial = host.tryNow(decodePropertyList(schedule, kMostOfASchedule));
        if (!trial.fault.empty()) return held.refuse(wire::kCannotTry, std::string(trial.fault));
        MOLLog("Occurrence %s: tried by user %u.", trial.token.c_str(), held.user());
        held.accept();
    };
    return scheduler.begin(call, {kModifyPreferencesAction, permitted});
}

int SchedulerInterface::pause(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& scheduler = *static_cast<SchedulerInterface*>(self);
    Pause asked;
    sd_bus_message_read(call, "xx", &asked.from, &asked.until);
    const Pause wanted = scheduler._host.completed(asked);
    if (const std::string_view fault = scheduler._host.faultOf(wanted); !fault.empty())
        return sd_bus_error_set(error, wire::kCannotPause, std::string(fault).c_str());
    const auto permitted = [&scheduler, wanted](HeldCall& held) {
        Pause pause = wanted;
        pause.by = nameOfUser(held.user());
        const auto [set, fault] = scheduler._host.pause(pause);
        if (!fault.empty()) return held.refuse(wire::kCannotPause, std::string(fault));
        MOLLog("Paused from %lld until %lld by user %u.", static_cast<long long>(set.from),
               static_cast<long long>(set.until), held.user());
        held.accept(scheduler.answerOf(set));
    };
    return scheduler.begin(call, {rightFor(wanted), permitted});
}

int SchedulerInterface::resume(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& scheduler = *static_cast<SchedulerInterface*>(self);
    const std::string token = tokenOf(call);
    std::vector<Pause> meant = scheduler._host.pauses();
    std::erase_if(meant, [&](const Pause& one) { return !token.empty() && one.token() != token; });
    if (meant.empty()) return sd_bus_error_set(error, wire::kNoSuchPause, kNoPause);
    // What is set while polkit asks is not ended by a lesser right than it takes.
    const bool areBrief = std::ranges::all_of(meant, &Pause::isBrief);
    const auto permitted = [&host = scheduler._host, token, areBrief](HeldCall& held) {
        if (!host.resume(token, areBrief)) return held.refuse(wire::kNoSuchPause, kNoPause);
        MOLLog("Ended by user %u: %s.", held.user(), token.empty() ? "all pauses" : ("pause " + token).c_str());
        held.accept();
    };
    return scheduler.begin(call, {areBrief ? kPauseAction : kModifyPreferencesAction, permitted});
}

int SchedulerInterface::begin(sd_bus_message* call, const Request& request) {
    const bool interaction = sd_bus_message_get_allow_interactive_authorization(call) > 0;
    _callers.hold(call, [this, request, interaction](HeldCall& held) {
        if (!_limit.admit(held.user(), std::chrono::steady_clock::now()))
            return held.refuse(wire::kTooManyChanges, "More than ten changes a minute are not taken.");
        if (!request.free.empty() && request.free == nameOfUser(held.user())) return request.permitted(held);
        held.ask(request.right, interaction, [&held, permitted = request.permitted](Verdict verdict) {
            if (verdict != Verdict::Allowed) return held.refuse(wire::kNotAuthorized, textOf(verdict));
            permitted(held);
        });
    });
    return 1;
}

}  // namespace quorel
