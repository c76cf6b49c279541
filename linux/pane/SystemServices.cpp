#include "linux/pane/SystemServices.h"

#include <unistd.h>

#include <ctime>
#include <utility>

#include "linux/JournalLog.h"
#include "linux/pane/Browser.h"
#include "linux/pane/BusCommunicationCenter.h"
#include "linux/pane/PolkitAuthorization.h"
#include "linux/pane/RootedPropertyListFiles.h"
#include "linux/pane/ThreadDispatch.h"

namespace quorel {

namespace {

class WallClock : public Clock {
public:
    CalendarDate currentDate() const override {
        const std::time_t now = std::time(nullptr);
        std::tm parts{};
        localtime_r(&now, &parts);
        return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
    }
};

class Desktop : public Workspace {
public:
    bool openURL(std::string_view url) override { return openInBrowser(std::string(url)); }
};

struct Services {
    Services(SystemSettings settings, DispatchQueue& mainQueue)
        : dispatch(mainQueue), files(std::move(settings.root)), updateChecker(std::move(settings.updates)) {}

    PolkitAuthorization authorization;
    WallClock clock;
    ThreadDispatch dispatch;
    RootedPropertyListFiles files;
    Desktop sharedWorkspace;
    BusCommunicationCenter communicationCenter;
    CurlUpdateChecker updateChecker;
};

}  // namespace

System startSystemServices(SystemSettings settings, DispatchQueue& mainQueue) {
    installJournalLog(settings.program);
    auto& services = *new Services(std::move(settings), mainQueue);
    VXCommunicationCenter::setSharedInstance(&services.communicationCenter);
    VXUpdateChecker::setSharedInstance(&services.updateChecker);
    return {.authorization = services.authorization,
            .clock = services.clock,
            .dispatch = services.dispatch,
            .files = services.files,
            .sharedWorkspace = services.sharedWorkspace,
            .effectiveUserId = geteuid()};
}

}  // namespace quorel
