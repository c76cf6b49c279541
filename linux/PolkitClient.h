#pragma once

#include <memory>
#include <string>

namespace sdbus {
class IConnection;
class IProxy;
}  // namespace sdbus

namespace quorel {

/// Asks polkit over a connection to the system bus of its own. Where a dialog is still open when the connection ends,
/// polkit closes it. Everything throws a std::exception when the bus or polkit cannot be reached, which may take a few
/// seconds. One thread at a time.
class PolkitClient {
public:
    PolkitClient();
    ~PolkitClient();

    /// Returns when polkit is there; the bus may have to start it.
    void reach();

    struct Answer {
        bool authorized = false;
        bool challenge = false;      ///< it would take a person's answer
        bool dismissed = false;      ///< the person did not want to give it
        std::string temporaryGrant;  ///< id of what polkit keeps for a while; empty for none
    };
    /// About the process behind a unique bus name, which, unlike a process number, never passes to another one.
    /// With interaction somebody may be asked, and five minutes without an answer are a failure.
    Answer check(const std::string& busName, const char* action, bool interaction);
    void revoke(const std::string& temporaryGrant);

    std::string ownBusName() const;

private:
    std::unique_ptr<sdbus::IConnection> _bus;
    std::unique_ptr<sdbus::IProxy> _proxy;
};

}  // namespace quorel
