#import <Quorel/VXPrefPanePlugInProtocol.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "actions/DescriptionKeys.h"

typedef NSObject<VXPrefPanePlugInProtocol, VXPrefPanePlugInMessages> Module;

using namespace quorel::description_keys;

namespace {

NSBundle *bundleAt(const std::string &path) {
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:path.c_str()]];
}

Class classIn(NSBundle *bundle) {
    [bundle load];
    NSString *name = [[bundle infoDictionary] objectForKey:@"VXEditClass"];
    return name ? [bundle classNamed:name] : nil;
}

NSString *key(std::string_view name) {
    return [NSString stringWithUTF8String:name.data()];
}

/// By name: a @protocol expression of clang's is none that this runtime can compare where no class adopts it.
Protocol *contract() {
    return NSProtocolFromString(@"VXPrefPanePlugInProtocol");
}

struct Expected {
    const char *path;
    const char *identifier;
    const char *name;
    const char *frenchName;
    const char *program;  // of what the daemon does not carry out itself
    const char *runsAs;
    bool base;
    bool startupIsFree;
    bool wakeUpIsFree;
    bool wakeUpByDefault;
    bool hasView;
};

class OneModule : public testing::Test {
protected:
    static void SetUpTestSuite() { [NSApplication sharedApplication]; }
};

class ModuleContract : public OneModule, public testing::WithParamInterface<Expected> {
protected:
    void SetUp() override {
        bundle = bundleAt(GetParam().path);
        Class moduleClass = classIn(bundle);
        ASSERT_TRUE(moduleClass);
        ASSERT_TRUE([moduleClass conformsToProtocol:contract()]);
        ASSERT_TRUE([moduleClass initializeClass:bundle]);
        module = [[[moduleClass alloc] init] autorelease];
    }
    ~ModuleContract() override { [pool drain]; }

    /// Whether the setter of a flag changes it; left as it was.
    template <class Get, class Set>
    static bool changes(Get get, Set set) {
        const BOOL was = get();
        set(!was);
        const bool changed = get() != was;
        set(was);
        return changed;
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
        if (!GetParam().wakeUpIsFree) EXPECT_EQ([module needsWakeUp] != NO, GetParam().wakeUpByDefault);
    }

    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSBundle *bundle = nil;
    Module *module = nil;
};

TEST_P(ModuleContract, SaysWhoItIs) {
    EXPECT_STREQ([[module pluginIdentifier] UTF8String], GetParam().identifier);
    EXPECT_STREQ([[module pluginName] UTF8String], GetParam().name);
    EXPECT_EQ([module isBaseModule] != NO, GetParam().base);
    EXPECT_FALSE([module setupView]);
    [module loadNib];
    EXPECT_EQ([module setupView] != nil, GetParam().hasView);
    if ([module setupView]) EXPECT_LE(NSWidth([[module setupView] frame]), 440);
}

TEST_P(ModuleContract, TellsTheSameToWhoLoadsNoClass) {
    NSDictionary *information = [bundle infoDictionary];
    NSDictionary *names = [information objectForKey:key(kNames)];
    EXPECT_STREQ([[information objectForKey:key(kType)] UTF8String], GetParam().identifier);
    EXPECT_STREQ([[names objectForKey:@"en"] UTF8String], GetParam().name);
    EXPECT_STREQ([[names objectForKey:@"fr"] UTF8String], GetParam().frenchName);
    NSString *table = [bundle pathForResource:@"Localizable"
                                       ofType:@"strings"
                                  inDirectory:nil
                              forLocalization:@"French"];
    NSArray *french = [[[NSString stringWithContentsOfFile:table] propertyListFromStringsFileFormat] allValues];
    EXPECT_TRUE([french containsObject:[NSString stringWithUTF8String:GetParam().frenchName]]);
    NSString *program = [information objectForKey:key(kProgram)];
    EXPECT_STREQ([program UTF8String], GetParam().program);
    EXPECT_STREQ([[information objectForKey:key(kRunsAs)] UTF8String], GetParam().runsAs);
    NSString *file = [[bundle resourcePath] stringByAppendingPathComponent:program ? program : @""];
    EXPECT_TRUE([[NSFileManager defaultManager] isExecutableFileAtPath:file]);
}

TEST_P(ModuleContract, KeepsBothFlagsInItsParameters) {
    [module setParameters:[module defaultParameters]];
    EXPECT_EQ(changes([&] { return [module needsStartup]; }, [&](BOOL needs) { [module setNeedsStartup:needs]; }),
              GetParam().startupIsFree);
    EXPECT_EQ(changes([&] { return [module needsWakeUp]; }, [&](BOOL needs) { [module setNeedsWakeUp:needs]; }),
              GetParam().wakeUpIsFree);
    EXPECT_EQ([module needsWakeUp], [module needsWakeUpByDefault]);
    EXPECT_EQ([module needsStartup], [module needsStartupByDefault]);

    [module setNeedsStartup:YES];
    NSDictionary *parameters = [module parameters];
    [module setNeedsStartup:NO];
    EXPECT_FALSE([module needsStartup]);
    [module setParameters:parameters];
    EXPECT_EQ([module needsStartup] != NO, GetParam().startupIsFree);
    [module setParameters:nil];
    EXPECT_FALSE([module needsStartup]);
}

TEST_P(ModuleContract, GetsOverWhateverStandsInTheFile) {
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

constexpr const char *kNone = nullptr;
constexpr Expected kModules[] = {
    {BUILT_IN_MODULES "/Sleep.vxplugin", "com.quorel.plugin.Sleep", "Sleep", "Veille", kNone, kNone,  //
     true, false, false, false, true},
    {BUILT_IN_MODULES "/WakeUp.vxplugin", "com.quorel.plugin.WakeUp", "Wake Up", "Réveil", kNone, kNone,  //
     true, true, false, true, false},
    {BUILT_IN_MODULES "/ShutDown.vxplugin", "com.quorel.plugin.ShutDown", "Shut Down", "Extinction", kNone, kNone,  //
     true, false, false, false, true},
    {BUILT_IN_MODULES "/Open.vxplugin", "com.quorel.plugin.Open", "Open", "Ouvrir", "open", "user",  //
     false, true, true, false, true},
    {BUILT_IN_MODULES "/Message.vxplugin", "com.quorel.plugin.Message", "Message", "Message", "message", "user",  //
     false, true, true, false, true},
    {SAMPLE_MODULE "/SayMessage.vxplugin", "org.example.SayMessage", "Say a message", "Dire un message", "say",
     "system", false, true, false, true, true}};
INSTANTIATE_TEST_SUITE_P(Modules, ModuleContract, testing::ValuesIn(kModules), [](const auto &info) {
    const std::string path = info.param.path;
    const std::size_t name = path.rfind('/') + 1;
    return path.substr(name, path.rfind('.') - name);
});

TEST_F(OneModule, SleepBringsTheMinutesIntoRange) {
    @autoreleasepool {
        Module *sleep = [[[classIn(bundleAt(BUILT_IN_MODULES "/Sleep.vxplugin")) alloc] init] autorelease];
        [sleep loadNib];
        NSTextField *field = nil;
        for (NSView *each in [[sleep setupView] subviews]) {
            if ([each isKindOfClass:[NSTextField class]] && [(NSTextField *)each isEditable])
                field = (NSTextField *)each;
        }
        ASSERT_TRUE(field);
        const std::pair<const char *, int> cases[] = {{"30", 30},  {"0", 1}, {"-3", 1},   {"1000", 999},
                                                      {"abc", 42}, {"", 42}, {"12x", 12}, {"99999999999", 999}};
        for (const auto &[typed, minutes] : cases) {
            [sleep setParameters:@{@"Idle Minutes" : @42}];
            [sleep fillSetupInterfaceFromParameters];
            [field setStringValue:[NSString stringWithUTF8String:typed]];
            [sleep fillParametersFromSetupInterface];
            EXPECT_EQ([[[sleep parameters] objectForKey:@"Idle Minutes"] intValue], minutes) << typed;
            EXPECT_EQ([field intValue], minutes) << typed;
        }
    }
}

}  // namespace
