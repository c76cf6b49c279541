#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "appkit/Bundles.h"
#include "appkit/VXConfigurator.h"
#include "platform/Platform.h"

/* Posted when the process is about to end without having been asked to quit: there are two seconds left. */
extern NSString *const VXProcessEndsNotification;

namespace quorel::appkit {

/// The composition root: every service that the pane runs on, made once for the process and never destroyed, since
/// background work may use it up to the last moment. Main thread.
///
/// Keys of the bundle's information dictionary that count here:
///   CFBundleShortVersionString, CFBundleVersion   the installed version and build
///   QuorelUpdateFeed                              address of the update feed; none: every check fails
///   QuorelRoot                                    folder put in front of the product's absolute paths, for trying out
struct Composition {
    static Composition &ofBundle(NSBundle *bundle);

    std::shared_ptr<Bundle> bundle;
    ConfiguratorNib &configuratorNib;
    Platform &platform;
};

}  // namespace quorel::appkit
