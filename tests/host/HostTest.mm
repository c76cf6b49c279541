#import <Quorel/VXPrefPanePlugInProtocol.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "appkit/Bundles.h"
#include "appkit/ModuleClass.h"
#include "appkit/VXPrefPaneController.h"
#include "configurator/VXPrefPanePlugInProtocol.h"

@interface NoModule : NSObject
@end
@implementation NoModule
@end

// Has no name; what else it should answer it raises at.
#pragma clang diagnostic ignored "-Wprotocol"
@interface NamelessModule : NSObject <VXPrefPanePlugInProtocol>
@end
@implementation NamelessModule
- (NSString *)pluginName {
    return nil;
}
- (NSView *)setupView {
    return (NSView *)@"no view";
}
- (void)fillSetupInterfaceFromParameters {
    @throw @"no exception";
}
- (void)fillParametersFromSetupInterface {
    throw 7;
}
@end

namespace quorel::appkit {
namespace {

class HostTest : public testing::Test {
protected:
    static void SetUpTestSuite() { [NSApplication sharedApplication]; }
    ~HostTest() override { [pool drain]; }

    VXPrefPaneController *makePane() {
        NSBundle *bundle = [NSBundle bundleWithPath:@PANE];
        return [[[[bundle principalClass] alloc] initWithBundle:bundle] autorelease];
    }

    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
};

TEST_F(HostTest, ThePaneIsWhatItsProtocolsSay) {
    VXPrefPaneController *pane = makePane();
    ASSERT_TRUE(pane);
    EXPECT_TRUE([pane conformsToProtocol:NSProtocolFromString(@"VXPrefPaneControllerProtocol")]);
    EXPECT_TRUE([pane conformsToProtocol:NSProtocolFromString(@"VXCommunicationProtocol")]);
    [pane setShouldUnselect:NSUnselectCancel];
    EXPECT_EQ([pane shouldUnselect], NSUnselectNow);
    EXPECT_TRUE([pane pong]);
    EXPECT_TRUE([pane communicationCenter]);
}

TEST_F(HostTest, ThePaneNamesItsWindowAndDoesNotKeepIt) {
    VXPrefPaneController *pane = makePane();
    for (const bool deferred : {false, true}) {
        NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 300, 200)
                                                       styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:deferred];
        [window setReleasedWhenClosed:NO];
        @autoreleasepool {
            [pane setVxPrefPaneWindow:window];
            EXPECT_EQ([pane vxPrefPaneWindow], window);
            [window setContentView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
            for (int shown = 0; shown < 2; ++shown) {
                [window orderFront:nil];
                [window close];
                EXPECT_EQ([pane vxPrefPaneWindow], window);
            }
            [window release];
        }
        EXPECT_EQ([pane vxPrefPaneWindow], nil);
    }
}

TEST_F(HostTest, ModulesAreAskedWithCare) {
    NSBundle *bundle = [NSBundle mainBundle];
    EXPECT_FALSE(moduleClass(Nil, bundle));
    EXPECT_FALSE(moduleClass([NoModule class], bundle));
    const auto nameless = std::dynamic_pointer_cast<VXPrefPanePlugInClass>(moduleClass([NamelessModule class], bundle));
    ASSERT_TRUE(nameless);
    EXPECT_FALSE(nameless->initializeClass(std::make_shared<Bundle>(bundle)));
    const auto module = nameless->create();
    ASSERT_TRUE(module);
    EXPECT_FALSE(module->pluginName());
    EXPECT_EQ(module->actionString(), "");
    EXPECT_FALSE(module->setupView());
    module->fillSetupInterfaceFromParameters();
    module->fillParametersFromSetupInterface();
}

// The pane says nothing of modules that are none, and looks for them in one folder alone.
TEST_F(HostTest, BundlesAreListedDirectlyAndAskedInSilence) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path([NSTemporaryDirectory() UTF8String]) / "PlugIns";
    for (const char *name : {"A", "Resources/B", "Resources/French.lproj/C", "French.lproj/D"}) {
        fs::create_directories(folder / (std::string(name) + ".vxplugin/Resources"));
    }
    const fs::path module = folder / "A.vxplugin";
    EXPECT_EQ(Bundles().pathsForResourcesOfTypeInDirectory("vxplugin", folder.string() + "/"),
              std::vector<std::string>{module.string()});

    std::ofstream(module / "Resources/Info-gnustep.plist") << R"({ NSExecutable = "A"; VXEditClass = "A"; })";
    for (const bool junk : {false, true}) {
        if (junk) std::ofstream(module / "A") << "no code";
        testing::internal::CaptureStderr();
        const auto bundle = Bundles().bundleWithPath(module.string());
        ASSERT_TRUE(bundle);
        bundle->load();
        EXPECT_FALSE(bundle->classNamed("A"));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << junk;
    }
    std::ofstream(module / "Resources/Info-gnustep.plist") << "{ VXEditClass = (; }";
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Bundles().bundleWithPath(module.string())->infoDictionary().isAbsent());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    fs::remove_all(folder);
}

}  // namespace
}  // namespace quorel::appkit
