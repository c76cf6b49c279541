#include "linux/PolkitAuthorization.h"

#include <exception>
#include <memory>
#include <set>
#include <string>

#include "linux/PolkitClient.h"
#include "model/Names.h"

namespace quorel {

/// Ids of the grants that polkit keeps for a while, as it does after the user has authenticated.
struct OpaqueAuthorization {
    std::set<std::string> temporaryGrants;
};

namespace {

// The published codes, so that a log line means to its reader what it says.
constexpr AuthorizationStatus kInvalidSet = -60001;
constexpr AuthorizationStatus kInvalidRef = -60002;
constexpr AuthorizationStatus kDenied = -60005;
constexpr AuthorizationStatus kCanceled = -60006;
constexpr AuthorizationStatus kInteractionNotAllowed = -60007;
constexpr AuthorizationStatus kInternal = -60008;

constexpr const char* kAdministratorRight = "system.privilege.admin";
AuthorizationStatus statusOf(const PolkitClient::Answer& answer) {
    if (answer.authorized) return kAuthorizationSuccess;
    if (answer.dismissed) return kCanceled;
    return answer.challenge ? kInteractionNotAllowed : kDenied;
}

}  // namespace

AuthorizationStatus PolkitAuthorization::AuthorizationCreate(AuthorizationFlags, AuthorizationRef& authorization) try {
    PolkitClient().reach();
    authorization = new OpaqueAuthorization;
    return kAuthorizationSuccess;
} catch (const std::exception&) {
    return kInternal;
}

AuthorizationStatus PolkitAuthorization::AuthorizationCopyRights(AuthorizationRef authorization,
                                                                 std::span<const AuthorizationItem> rights,
                                                                 AuthorizationFlags flags) try {
    if (!authorization) return kInvalidRef;
    if (rights.empty()) return kInvalidSet;
    for (const auto& right : rights)
        if (right.name != kAdministratorRight) return kDenied;
    PolkitClient polkit;
    const auto answer =
        polkit.check(polkit.ownBusName(), kModifyPreferencesAction, flags & kAuthorizationFlagInteractionAllowed);
    if (answer.authorized && !answer.temporaryGrant.empty())
        authorization->temporaryGrants.insert(answer.temporaryGrant);
    return statusOf(answer);
} catch (const std::exception&) {
    return kInternal;
}

AuthorizationStatus PolkitAuthorization::AuthorizationFree(AuthorizationRef authorization,
                                                           AuthorizationFlags flags) try {
    const std::unique_ptr<OpaqueAuthorization> owner(authorization);
    if (!authorization) return kInvalidRef;
    if (flags & kAuthorizationFlagDestroyRights && !authorization->temporaryGrants.empty()) {
        PolkitClient polkit;
        for (const auto& grant : authorization->temporaryGrants) polkit.revoke(grant);
    }
    return kAuthorizationSuccess;
} catch (const std::exception&) {
    return kInternal;
}

}  // namespace quorel
