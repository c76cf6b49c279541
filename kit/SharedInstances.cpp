#include <atomic>

#include "kit/VXCommunicationCenter.h"
#include "kit/VXUpdateChecker.h"

namespace quorel {

namespace {

std::atomic<VXCommunicationCenter*> communicationCenter{nullptr};
std::atomic<VXUpdateChecker*> updateChecker{nullptr};

}  // namespace

VXCommunicationCenter* VXCommunicationCenter::sharedInstance() {
    return communicationCenter;
}

void VXCommunicationCenter::setSharedInstance(VXCommunicationCenter* instance) {
    communicationCenter = instance;
}

VXUpdateChecker* VXUpdateChecker::sharedInstance() {
    return updateChecker;
}

void VXUpdateChecker::setSharedInstance(VXUpdateChecker* instance) {
    updateChecker = instance;
}

}  // namespace quorel
