#import "appkit/Composition.h"

#include "ProductVersion.h"
#include "appkit/Application.h"
#include "appkit/MainQueue.h"
#include "appkit/Services.h"
#include "appkit/Strings.h"
#include "appkit/Table.h"
#include "linux/pane/EndOfProcess.h"
#include "linux/pane/SystemServices.h"

// A build for macOS needs that system's services in place of linux/: its Authorization Services, its dispatch queues,
// and a channel to the programs there.

NSString *const VXProcessEndsNotification = @"VXProcessEndsNotification";

namespace quorel::appkit {

namespace {

std::string info(NSBundle *bundle, NSString *key) {
    id value = [bundle objectForInfoDictionaryKey:key];
    return [value isKindOfClass:[NSString class]] ? stdString(value) : std::string();
}

SystemSettings settingsOf(NSBundle *bundle) {
    return {.program = "quorel-pane",
            .root = info(bundle, @"QuorelRoot"),
            .updates = {.feed = info(bundle, @"QuorelUpdateFeed"),
                        .installedVersion = info(bundle, @"CFBundleShortVersionString"),
                        .installedBuild = info(bundle, @"CFBundleVersion"),
                        .caFile = {}}};
}

struct Services {
    explicit Services(NSBundle *bundle)
        : platform{{.application = application,
                    .bundles = bundles,
                    .cells = cells,
                    .defaultCenter = defaultCenter,
                    .standardUserDefaults = standardUserDefaults,
                    .timeFormat = timeFormat},
                   startSystemServices(settingsOf(bundle), mainQueue)},
          configuratorNib(bundle),
          composition{std::make_shared<Bundle>(bundle, info(bundle, @"QuorelRoot") + product::kPlugInsFolder),
                      configuratorNib, platform} {
        beforeTheEnd(mainQueue, [] {
            @autoreleasepool {
                [[NSNotificationCenter defaultCenter] postNotificationName:VXProcessEndsNotification object:nil];
            }
        });
    }

    Application application;
    Bundles bundles;
    Cells cells;
    MainQueue mainQueue;
    NotificationCenter defaultCenter;
    UserDefaults standardUserDefaults;
    TimeFormat timeFormat;
    Platform platform;
    ConfiguratorNib configuratorNib;
    Composition composition;
};

}  // namespace

Composition &Composition::ofBundle(NSBundle *bundle) {
    static Services &services = *new Services([bundle retain]);
    return services.composition;
}

}  // namespace quorel::appkit
