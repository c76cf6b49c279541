#include "linux/PolkitClient.h"

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <tuple>

namespace quorel {

namespace {

using namespace std::chrono_literals;

using Details = std::map<std::string, std::string>;

constexpr const char* kPolkit = "org.freedesktop.PolicyKit1";
constexpr const char* kPolkitPath = "/org/freedesktop/PolicyKit1/Authority";
constexpr const char* kPolkitInterface = "org.freedesktop.PolicyKit1.Authority";

constexpr std::chrono::seconds kMachineLimit = 5s;
constexpr std::chrono::seconds kPersonLimit = 5min;  // somebody is looking for a password

constexpr std::uint32_t kAllowUserInteraction = 1;  // polkit's flag

}  // namespace

PolkitClient::PolkitClient()
    : _bus(sdbus::createSystemBusConnection()), _proxy(sdbus::createProxy(*_bus, kPolkit, kPolkitPath)) {}

PolkitClient::~PolkitClient() = default;

void PolkitClient::reach() {
    sdbus::Variant version;
    _proxy->callMethod("Get")
        .onInterface("org.freedesktop.DBus.Properties")
        .withTimeout(kMachineLimit)
        .withArguments(std::string(kPolkitInterface), std::string("BackendVersion"))
        .storeResultsTo(version);
}

PolkitClient::Answer PolkitClient::check(const std::string& busName, const char* action, bool interaction) {
    const std::map<std::string, sdbus::Variant> identity{{"name", sdbus::Variant(busName)}};
    const sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>> subject{
        std::make_tuple(std::string("system-bus-name"), identity)};
    sdbus::Struct<bool, bool, Details> answer;
    _proxy->callMethod("CheckAuthorization")
        .onInterface(kPolkitInterface)
        .withTimeout(interaction ? kPersonLimit : kMachineLimit)
        .withArguments(subject, std::string(action), Details(), interaction ? kAllowUserInteraction : 0U, std::string())
        .storeResultsTo(answer);
    const auto& [authorized, challenge, details] = static_cast<const std::tuple<bool, bool, Details>&>(answer);
    const auto grant = details.find("polkit.temporary_authorization_id");
    return {authorized, challenge, details.contains("polkit.dismissed"),
            grant == details.end() ? std::string() : grant->second};
}

void PolkitClient::revoke(const std::string& temporaryGrant) {
    _proxy->callMethod("RevokeTemporaryAuthorizationById")
        .onInterface(kPolkitInterface)
        .withTimeout(kMachineLimit)
        .withArguments(temporaryGrant);
}

std::string PolkitClient::ownBusName() const {
    return _bus->getUniqueName();
}

}  // namespace quorel
