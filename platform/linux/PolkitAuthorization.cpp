#include "platform/linux/PolkitAuthorization.h"

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>

namespace quorel {

/// Ids of the grants that polkit keeps for a while, as it does after the user has authenticated.
struct OpaqueAuthorization {
    std::set<std::string> temporaryGrants;
};

namespace {

using namespace std::chrono_literals;

// The published codes, so that a log line means to its reader what it says.
constexpr AuthorizationStatus kInvalidSet = -60001;
constexpr AuthorizationStatus kInvalidRef = -60002;
constexpr AuthorizationStatus kDenied = -60005;
constexpr AuthorizationStatus kCanceled = -60006;
constexpr AuthorizationStatus kInteractionNotAllowed = -60007;
constexpr AuthorizationStatus kInternal = -60008;

constexpr const char* kAdministratorRight = "system.privilege.admin";
constexpr const char* kPolkit = "org.freedesktop.PolicyKit1";
constexpr const char* kPolkitPath = "/org/freedesktop/PolicyKit1/Authority";
constexpr const char* kPolkitInterface = "org.freedesktop.PolicyKit1.Authority";

constexpr std::chrono::seconds kMachineLimit = 5s;
constexpr std::chrono::seconds kPersonLimit = 5min;  // somebody is looking for a password

constexpr std::uint32_t kAllowUserInteraction = 1;  // polkit's flag

/// A connection of its own for each use. Where a dialog is still open when it ends, polkit closes that dialog.
class Polkit {
public:
    Polkit() : _bus(sdbus::createSystemBusConnection()), _proxy(sdbus::createProxy(*_bus, kPolkit, kPolkitPath)) {}

    void reach() {
        sdbus::Variant version;
        _proxy->callMethod("Get")
            .onInterface("org.freedesktop.DBus.Properties")
            .withTimeout(kMachineLimit)
            .withArguments(std::string(kPolkitInterface), std::string("BackendVersion"))
            .storeResultsTo(version);
    }

    AuthorizationStatus check(bool interaction, std::set<std::string>& temporaryGrants) {
        const std::map<std::string, sdbus::Variant> identity{{"name", sdbus::Variant(_bus->getUniqueName())}};
        const sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>> subject{
            std::make_tuple(std::string("system-bus-name"), identity)};
        sdbus::Struct<bool, bool, std::map<std::string, std::string>> answer;
        _proxy->callMethod("CheckAuthorization")
            .onInterface(kPolkitInterface)
            .withTimeout(interaction ? kPersonLimit : kMachineLimit)
            .withArguments(subject, std::string(kModifyPreferencesAction), std::map<std::string, std::string>(),
                           interaction ? kAllowUserInteraction : 0U, std::string())
            .storeResultsTo(answer);
        const auto& [authorized, challenge, details] =
            static_cast<const std::tuple<bool, bool, std::map<std::string, std::string>>&>(answer);
        if (authorized) {
            if (const auto grant = details.find("polkit.temporary_authorization_id"); grant != details.end())
                temporaryGrants.insert(grant->second);
            return kAuthorizationSuccess;
        }
        if (details.contains("polkit.dismissed")) return kCanceled;
        return challenge ? kInteractionNotAllowed : kDenied;
    }

    void revoke(const std::string& grant) {
        _proxy->callMethod("RevokeTemporaryAuthorizationById")
            .onInterface(kPolkitInterface)
            .withTimeout(kMachineLimit)
            .withArguments(grant);
    }

private:
    std::unique_ptr<sdbus::IConnection> _bus;
    std::unique_ptr<sdbus::IProxy> _proxy;
};

}  // namespace

AuthorizationStatus PolkitAuthorization::AuthorizationCreate(AuthorizationFlags, AuthorizationRef& authorization) try {
    Polkit().reach();
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
    return Polkit().check(flags & kAuthorizationFlagInteractionAllowed, authorization->temporaryGrants);
} catch (const std::exception&) {
    return kInternal;
}

AuthorizationStatus PolkitAuthorization::AuthorizationFree(AuthorizationRef authorization,
                                                           AuthorizationFlags flags) try {
    const std::unique_ptr<OpaqueAuthorization> owner(authorization);
    if (!authorization) return kInvalidRef;
    if (flags & kAuthorizationFlagDestroyRights && !authorization->temporaryGrants.empty()) {
        Polkit polkit;
        for (const auto& grant : authorization->temporaryGrants) polkit.revoke(grant);
    }
    return kAuthorizationSuccess;
} catch (const std::exception&) {
    return kInternal;
}

}  // namespace quorel
