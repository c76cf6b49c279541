#include <atomic>

#include "kit/VXCommunicationCenter.h"
#include "kit/VXUpdateChecker.h"

namespace quorel {

namespace {

/// A channel on which nobody answers.
class NoCommunicationCenter : public VXCommunicationCenter {
    void setObserver(std::weak_ptr<VXCommunicationProtocol>) override {}
    void createServerConnection() override {}
    bool pingDaemon() override { return false; }
    bool pingAgentOfUser(unsigned) override { return false; }
    bool postNotificationToDaemon(const Notification&) override { return false; }
    EditsAnswer postNotificationToDaemon(const Notification&, const Value&) override { return {}; }
    bool postNotificationToAgentOfUser(const Notification&, unsigned) override { return false; }
};

/// Knows no version, and no service.
class NoUpdateChecker : public VXUpdateChecker {
    std::optional<std::string> versionString() const override { return {}; }
    std::optional<std::string> fullVersionString() const override { return {}; }
    bool updateLatestVersionDictionary() override { return false; }
    std::optional<std::string> latestVersion() const override { return {}; }
    std::string latestVersionURL() const override { return {}; }
};

NoCommunicationCenter noCommunicationCenter;
NoUpdateChecker noUpdateChecker;
std::atomic<VXCommunicationCenter*> communicationCenter{&noCommunicationCenter};
std::atomic<VXUpdateChecker*> updateChecker{&noUpdateChecker};

}  // namespace

VXCommunicationCenter* VXCommunicationCenter::sharedInstance() {
    return communicationCenter;
}

void VXCommunicationCenter::setSharedInstance(VXCommunicationCenter* instance) {
    communicationCenter = instance ? instance : &noCommunicationCenter;
}

VXUpdateChecker* VXUpdateChecker::sharedInstance() {
    return updateChecker;
}

void VXUpdateChecker::setSharedInstance(VXUpdateChecker* instance) {
    updateChecker = instance ? instance : &noUpdateChecker;
}

}  // namespace quorel
