#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kit/VXCommunicationCenter.h"
#include "kit/VXUpdateChecker.h"
#include "pane/VXCommunicationProtocol.h"

namespace quorel::test {

/// A channel to programs that are alive or not, as told. Installs itself as the shared instance while it lives.
/// Whatever is posted counts as not delivered, unless told otherwise: the pane is not to mind.
class FakeCommunicationCenter : public VXCommunicationCenter {
public:
    FakeCommunicationCenter() { setSharedInstance(this); }
    ~FakeCommunicationCenter() override { setSharedInstance(nullptr); }

    void setObserver(std::weak_ptr<VXCommunicationProtocol> newObserver) override { observer = std::move(newObserver); }
    void createServerConnection() override { ++serverConnections; }
    bool pingDaemon() override {
        ++daemonPings;
        if (onPing) onPing();
        return daemonAlive;
    }
    bool pingAgentOfUser(unsigned userId) override {
        agentPings.push_back(userId);
        if (onPing) onPing();
        return agentAlive;
    }
    bool postNotificationToDaemon(const Notification& notification) override {
        return postNotificationToDaemon(notification, Value()).isHandled;
    }
    EditsAnswer postNotificationToDaemon(const Notification& notification, const Value& base) override {
        bases.push_back(base);
        toDaemon.push_back(notification);
        if (onDaemon) onDaemon(notification);
        answer.isHandled = handles;
        return answer;
    }
    bool postNotificationToAgentOfUser(const Notification& notification, unsigned userId) override {
        toAgent.emplace_back(notification, userId);
        return false;
    }

    bool daemonAlive = false;
    bool agentAlive = false;
    bool handles = false;                               ///< what is posted to the daemon
    EditsAnswer answer;                                 ///< to edits, beside that
    std::function<void()> onPing;                       ///< while a ping is under way
    std::function<void(const Notification&)> onDaemon;  ///< what the daemon does
    std::weak_ptr<VXCommunicationProtocol> observer;
    int serverConnections = 0;
    int daemonPings = 0;
    std::vector<unsigned> agentPings;  ///< the user ids asked for
    std::vector<Notification> toDaemon;
    std::vector<Value> bases;  ///< of each of these; absent for one without
    std::vector<std::pair<Notification, unsigned>> toAgent;
};

/// An update service that answers as told. Installs itself as the shared instance while it lives.
class FakeUpdateChecker : public VXUpdateChecker {
public:
    FakeUpdateChecker() { setSharedInstance(this); }
    ~FakeUpdateChecker() override { setSharedInstance(nullptr); }

    std::optional<std::string> versionString() const override { return version; }
    std::optional<std::string> fullVersionString() const override { return fullVersion; }
    bool updateLatestVersionDictionary() override {
        ++fetches;
        return reachable;
    }
    std::optional<std::string> latestVersion() const override { return latest; }
    std::string latestVersionURL() const override { return url; }

    std::optional<std::string> version = "1.0";
    std::optional<std::string> fullVersion = "1.0 (100)";
    std::optional<std::string> latest;
    std::string url = "https://example.invalid/download";
    bool reachable = true;
    int fetches = 0;
};

}  // namespace quorel::test
