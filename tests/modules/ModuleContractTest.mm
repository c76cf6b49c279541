#import <Quorel/VXPrefPanePlugInProtocol.h>
#include <gtest/gtest.h>

#include <string>

#include "actions/DescriptionKeys.h"

typedef NSObject<VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> Module;

namespace {

namespace keys = quorel::description_keys;

/// By name: a @protocol expression of clang's is none that this runtime can compare where no class adopts it.
Protocol *contract() {
    return NSProtocolFromString(@"VXPrefPanePlugInProtocol");
}

/// The sample's class, as authors begin with it.
class ModuleContract : public testing::Test {
protected:
    static void SetUpTestSuite() { [NSApplication sharedApplication]; }
    void SetUp() override {
        bundle = [NSBundle bundleWithPath:@SAMPLE];
        [bundle load];
        Class moduleClass = [bundle classNamed:[[bundle infoDictionary] objectForKey:@"VXEditClass"]];
        ASSERT_TRUE(moduleClass);
        ASSERT_TRUE([moduleClass conformsToProtocol:contract()]);
        ASSERT_TRUE([moduleClass initializeClass:bundle]);
        module = [[[moduleClass alloc] init] autorelease];
    }
    ~ModuleContract() override { [pool drain]; }

    id information(std::string_view key) {
        return [[bundle infoDictionary] objectForKey:[NSString stringWithUTF8String:key.data()]];
    }

    /// Fit for a preferences file, and for the questions of table and sheet.
    void expectUsable() {
        NSString *error = nil;
        EXPECT_TRUE([NSPropertyListSerialization dataFromPropertyList:[module parameters]
                                                               format:NSPropertyListXMLFormat_v1_0
                                                     errorDescription:&error]);
        EXPECT_GT([[module actionString] length], 0u);
        [module fillSetupInterfaceFromParameters];
        NSDictionary *before = [module parameters];
        [module fillParametersFromSetupInterface];
        EXPECT_TRUE([[module parameters] isEqual:before]) << [[before description] UTF8String];
        EXPECT_TRUE([module needsWakeUp]);
    }

    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSBundle *bundle = nil;
    Module *module = nil;
};

TEST_F(ModuleContract, SaysWhoItIsAlsoToWhoLoadsNoClass) {
    EXPECT_STREQ([[module pluginIdentifier] UTF8String], "org.example.SayMessage");
    EXPECT_TRUE([[module pluginIdentifier] isEqual:information(keys::kType)]);
    EXPECT_TRUE([[module pluginName] isEqual:[information(keys::kNames) objectForKey:@"en"]]);
    EXPECT_FALSE([module isBaseModule]);
    NSString *program = [[bundle resourcePath] stringByAppendingPathComponent:information(keys::kProgram)];
    EXPECT_TRUE([[NSFileManager defaultManager] isExecutableFileAtPath:program]);
    EXPECT_FALSE([module setupView]);
    [module loadNib];
    ASSERT_TRUE([module setupView]);
    EXPECT_LE(NSWidth([[module setupView] frame]), 440);
}

TEST_F(ModuleContract, KeepsBothFlagsInItsParameters) {
    [module setParameters:[module defaultParameters]];
    EXPECT_EQ([module needsWakeUp], [module needsWakeUpByDefault]);
    EXPECT_EQ([module needsStartup], [module needsStartupByDefault]);
    [module setNeedsWakeUp:NO];
    EXPECT_TRUE([module needsWakeUp]) << "is fixed";
    [module setNeedsStartup:YES];
    NSDictionary *parameters = [module parameters];
    [module setNeedsStartup:NO];
    EXPECT_FALSE([module needsStartup]);
    [module setParameters:parameters];
    EXPECT_TRUE([module needsStartup]);
    [module setParameters:nil];
    EXPECT_FALSE([module needsStartup]);
}

TEST_F(ModuleContract, GetsOverWhateverStandsInTheFile) {
    [module loadNib];
    NSMutableArray *odd = [NSMutableArray arrayWithObjects:@"", @"%@ %n", @(-5), @(1e300), @[ @1 ],
                                                           @{@"a" : @1}, [NSData data], [NSDate date], nil];
    for (id value in odd) {
        SCOPED_TRACE([[value description] UTF8String]);
        [module setParameters:value];
        expectUsable();
        for (NSString *key in [module defaultParameters]) {
            [module setParameters:[NSDictionary dictionaryWithObject:value forKey:key]];
            expectUsable();
        }
    }
    [module setParameters:nil];
    expectUsable();
}

}  // namespace
