#import "appkit/Composition.h"

#include <unistd.h>

#include "appkit/Application.h"
#include "appkit/MainQueue.h"
#include "appkit/Services.h"
#include "appkit/Strings.h"
#include "appkit/Table.h"
#include "kit/update/CurlUpdateChecker.h"
#include "linux/BusCommunicationCenter.h"
#include "linux/JournalLog.h"
#include "linux/PolkitAuthorization.h"
#include "linux/RootedPropertyListFiles.h"
#include "linux/ThreadDispatch.h"

// A build for macOS needs a file like this one with that system's services: its Authorization Services, its dispatch
// queues, and a channel to the programs there.

namespace quorel::appkit {

namespace {

std::string info(NSBundle *bundle, NSString *key) {
    id value = [bundle objectForInfoDictionaryKey:key];
    return [value isKindOfClass:[NSString class]] ? stdString(value) : std::string();
}

struct Services {
    explicit Services(NSBundle *bundle)
        : files(info(bundle, @"QuorelRoot")),
          updateChecker({info(bundle, @"QuorelUpdateFeed"),
                         info(bundle, @"CFBundleShortVersionString"),
                         info(bundle, @"CFBundleVersion"),
                         {}}),
          configuratorNib(bundle),
          composition{std::make_shared<Bundle>(bundle), configuratorNib, platform} {
        VXCommunicationCenter::setSharedInstance(&communicationCenter);
        VXUpdateChecker::setSharedInstance(&updateChecker);
    }

    Application application;
    PolkitAuthorization authorization;
    Bundles bundles;
    Cells cells;
    Clock clock;
    MainQueue mainQueue;
    ThreadDispatch dispatch{mainQueue};
    NotificationCenter defaultCenter;
    RootedPropertyListFiles files;
    UserDefaults standardUserDefaults;
    Workspace sharedWorkspace;
    Platform platform{application, authorization,        bundles,         cells,    clock, dispatch, defaultCenter,
                      files,       standardUserDefaults, sharedWorkspace, geteuid()};
    BusCommunicationCenter communicationCenter;
    CurlUpdateChecker updateChecker;
    ConfiguratorNib configuratorNib;
    Composition composition;
};

}  // namespace

Composition &Composition::ofBundle(NSBundle *bundle) {
    static Services &services = *[bundle] {
        installJournalLog("quorel-pane");
        return new Services([bundle retain]);
    }();
    return services.composition;
}

}  // namespace quorel::appkit
