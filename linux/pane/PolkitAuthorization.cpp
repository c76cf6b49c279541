#include "linux/pane/PolkitAuthorization.h"

#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include "kit/MOLLog.h"
#include "linux/bus/PolkitQuestion.h"
#include "model/Wire.h"

namespace quorel {

/// Ids of the grants that polkit keeps for a while, as it does after the user has authenticated.
struct OpaqueAuthorization {
    std::set<std::string> temporaryGrants;
};

namespace {

// The interface's own numbers of these failures: whoever finds one in the log can look it up.
constexpr AuthorizationStatus kInvalidSet = -60001;
constexpr AuthorizationStatus kInvalidRef = -60002;
constexpr AuthorizationStatus kDenied = -60005;
constexpr AuthorizationStatus kCanceled = -60006;
constexpr AuthorizationStatus kInteractionNotAllowed = -60007;
constexpr AuthorizationStatus kInternal = -60008;

constexpr const char* kAdministratorRight = "system.privilege.admin";

// A click on the padlock asks twice, and with a hung bus its window stands still meanwhile.
constexpr std::chrono::milliseconds kBusLimit{900};
constexpr std::chrono::seconds kPolkitLimit{5};  // the bus may have to start it

/// Sends a call to polkit and waits; throws without a proper reply.
void callPolkit(sd_bus* bus, const BusMessagePointer& call) {
    std::optional<bool> done;
    const auto slot = callAsync(bus, call.get(), kPolkitLimit,
                                [&](sd_bus_message* reply) { done = !sd_bus_message_is_method_error(reply, nullptr); });
    serveUntil(bus, BusDeadline::clock::now() + kPolkitLimit, [&] { return done.has_value(); });
    if (!done.value_or(false)) throw std::runtime_error("polkit does not answer");
}

/// A connection over which polkit was found to answer, so that whatever is slow from there on is a person.
BusConnection reachPolkit() {
    auto bus = beginConnection(Bus::System);
    const auto ready = [&] { return sd_bus_is_ready(bus.get()) > 0; };
    if (!bus || !serveUntil(bus.get(), BusDeadline::clock::now() + kBusLimit, ready))
        throw std::runtime_error("the bus does not answer");
    const auto call = newCall(bus.get(), kPolkitName, kPolkitPath, "org.freedesktop.DBus.Properties", "Get");
    sd_bus_message_append(call.get(), "ss", kPolkitInterface, "BackendVersion");
    callPolkit(bus.get(), call);
    return bus;
}

/// The lock itself says nothing: whoever wonders why it stays closed finds it in the journal.
AuthorizationStatus unreachable(const std::exception& reason) {
    MOLLog("The padlock cannot ask for a password: %s.", reason.what());
    return kInternal;
}

AuthorizationStatus statusOf(const PolkitQuestion::Answer& answer) {
    if (answer.authorized) return kAuthorizationSuccess;
    if (answer.dismissed) return kCanceled;
    return answer.challenge ? kInteractionNotAllowed : kDenied;
}

}  // namespace

AuthorizationStatus PolkitAuthorization::AuthorizationCreate(AuthorizationFlags, AuthorizationRef& authorization) try {
    reachPolkit();
    authorization = new OpaqueAuthorization;
    return kAuthorizationSuccess;
} catch (const std::exception& exception) {
    return unreachable(exception);
}

AuthorizationStatus PolkitAuthorization::AuthorizationCopyRights(AuthorizationRef authorization,
                                                                 std::span<const AuthorizationItem> rights,
                                                                 AuthorizationFlags flags) try {
    if (!authorization) return kInvalidRef;
    if (rights.empty()) return kInvalidSet;
    for (const auto& right : rights)
        if (right.name != kAdministratorRight) return kDenied;
    const auto bus = reachPolkit();
    const char* ownName = nullptr;
    std::optional<std::optional<PolkitQuestion::Answer>> outcome;
    if (sd_bus_get_unique_name(bus.get(), &ownName) < 0) return kInternal;
    const bool mayAsk = (flags & kAuthorizationFlagInteractionAllowed) != 0;
    const PolkitQuestion question(bus.get(), ownName, kModifyPreferencesAction, mayAsk,
                                  [&](auto answer) { outcome = std::move(answer); });
    serveUntil(bus.get(), BusDeadline::max(), [&] { return outcome.has_value(); });
    if (!outcome || !*outcome) return kInternal;
    const auto& answer = **outcome;
    if (answer.authorized && !answer.temporaryGrant.empty())
        authorization->temporaryGrants.insert(answer.temporaryGrant);
    const AuthorizationStatus status = statusOf(answer);
    if (mayAsk && status == kInteractionNotAllowed)
        MOLLog("The padlock has nobody to ask for a password: no polkit agent answers for this session.");
    return status;
} catch (const std::exception& exception) {
    return unreachable(exception);
}

AuthorizationStatus PolkitAuthorization::AuthorizationFree(AuthorizationRef authorization,
                                                           AuthorizationFlags flags) try {
    const std::unique_ptr<OpaqueAuthorization> owner(authorization);
    if (!authorization) return kInvalidRef;
    if (flags & kAuthorizationFlagDestroyRights && !authorization->temporaryGrants.empty()) {
        const auto bus = reachPolkit();
        for (const auto& grant : authorization->temporaryGrants) {
            const auto call = callToPolkit(bus.get(), "RevokeTemporaryAuthorizationById");
            sd_bus_message_append(call.get(), "s", grant.c_str());
            callPolkit(bus.get(), call);
        }
    }
    return kAuthorizationSuccess;
} catch (const std::exception&) {
    return kInternal;
}

}  // namespace quorel
