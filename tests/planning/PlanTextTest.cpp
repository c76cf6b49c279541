#include "planning/PlanText.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "model/Dictionary.h"
#include "model/PropertyList.h"
#include "planning/Json.h"
#include "planning/PreferencesCheck.h"
#include "planning/ScheduleWords.h"

namespace quorel {
namespace {

ActionDescription describe(const char* type, const Value& options, const Dictionary& besides = {}) {
    Value said = Dictionary{{"QuorelActionFormat", 1},
                            {"VXEditClass", "VXDescribedPlugIn"},
                            {"QuorelActionType", type},
                            {"QuorelActionNames", Dictionary{{"en", "x"}}},
                            {"QuorelActionOptions", options}};
    if (std::string_view(type).starts_with("org."))  // the others the daemon carries out
        said = said.with("QuorelActionProgram", "x").with("QuorelActionRunsAs", "user");
    for (std::size_t i = 0; i < besides.size(); ++i) said = said.with(besides.keyAt(i), besides.valueAt(i));
    return ActionDescription::from("x.vxplugin", said);
}

const ActionWords& actions() {
    const auto option = [](const char* key, const char* kind) {
        return Value(Dictionary{{"Key", key}, {"Kind", kind}, {"Label", Dictionary{{"en", key}}}});
    };
    static const ActionWords words({
        describe("com.quorel.plugin.Sleep",
                 Array{option("Only When Idle", "flag"),
                       option("Idle Minutes", "number").with("Least", 1).with("Most", 999).with("Default", 15)},
                 {{"QuorelActionWakesUp", "never"}}),
        describe("org.x.Run", Array{option("Program", "text").with("TakesWords", true),
                                    option("Arguments", "lines").with("TakesWords", true)}),
        describe("org.x.Message", Array{option("Text", "lines"), option("Restart", "time").with("Default", "7:00"),
                                        option("Parameters", "flag")}),
        describe("org.x.Start", Array{option("Program", "text").with("TakesWords", true).with("IsFile", true)}),
        describe("org.a.Backup", Array{}),
        describe("org.b.Backup", Array{}),
        describe("org.x.Sun", Array{}),
    });
    return words;
}

Value newSchedule(const std::string& line, std::vector<TextFault>* faults = nullptr) {
    std::vector<TextFault> own;
    return scheduleOf(splitLine(line).words, actions(), faults ? *faults : own);
}

TEST(PlanTextTest, WordsOfOneLine) {
    const struct {
        const char *typed, *written;
    } cases[] = {
        {"sleep every day at 23:15", "23:15 daily sleep"},
        {"7pm sleep mon-fri only-when-idle=yes idle-minutes=20",
         "19:00 mon-fri sleep only-when-idle=yes idle-minutes=20"},
        {"sat-mon 07.05 wake-up off start-up=yes", "07:05 mon,sat,sun wake-up off start-up=yes"},
        {"sleep Weekdays,SUNDAY 0:00 idle-minutes=15 wake-up=no", "00:00 mon-fri,sun sleep"},
        {"18:00 never org.x.Run -- /bin/a '' 'b c' --", "18:00 never run -- /bin/a '' 'b c' --"},
        {"18:00 run -- /bin/a b ''", "18:00 daily run -- /bin/a b ''"},
        {"18:00 run -- /bin/a ''", "18:00 daily run -- /bin/a ''"},
        {"18:00 run -- /bin/a \u200E", "18:00 daily run -- /bin/a $'\\xe2\\x80\\x8e'"},
        {"8:00 message restart=5pm parameters='{\"\u202E\":1}'",
         R"(08:00 daily message restart=17:00 parameters='{"\u202e":1}')"},
        {"18:00 run program=/bin/a", "18:00 daily run -- /bin/a"},
        {"18:00 run arguments=x", "18:00 daily run arguments=x"},
        {R"(noon message "text=a\"b" 'parameters={"Own":[1,2.0,{"$data":"/+8="}]}')",
         R"(12:00 daily message text='a"b' parameters='{"Own":[1,2.0,{"$data":"/+8="}]}')"},
        {R"(7h message text=$'it\'s\n#x' restart=6:30)", R"(07:00 daily message $'text=it\'s\n#x' restart=06:30)"},
        {R"(7h message parameters='{"Parameters":true}' wake-up=yes)",
         R"(07:00 daily message wake-up=yes parameters='{"Parameters":true}')"},
        {"wakeup at 7h mon tue on", "07:00 mon,tue wake-up"},
        {"12am org.a.Backup +sat # nightly", "00:00 sat org.a.Backup"},
        {"midnight org.unknown.Thing wake-up=yes tue,thu", "00:00 tue,thu org.unknown.Thing wake-up=yes"},
        {"8:00 org.x.Sun", "08:00 daily org.x.Sun"},  // "sun" is a day
        {R"('{"Action Hour":25,"x":{"$dictionary":{"$date":"2027-03-01T23:00:00Z"}}}')",
         R"('{"Action Hour":25,"x":{"$dictionary":{"$date":"2027-03-01T23:00:00Z"}}}')"},
    };
    for (const auto& [typed, written] : cases) {
        std::vector<TextFault> faults;
        const Value schedule = newSchedule(typed, &faults);
        EXPECT_EQ(lineOf(schedule, actions()), written);
        for (const TextFault& fault : faults) ADD_FAILURE() << typed << ": " << fault.code << " " << fault.word;
        EXPECT_EQ(newSchedule(written), schedule) << written;
    }
}

TEST(PlanTextTest, FaultsAreAllNamedAtTheirPlace) {
    const struct {
        std::string line;
        const char *code, *word, *allowed;
        std::size_t column;
    } cases[] = {
        {"sleep 25:00", "time", "25:00", "", 7},
        {"sleep 7:5", "time", "7:5", "", 7},
        {"sleep 13pm", "time", "13pm", "", 7},
        {"sleep 7", "time", "7", "", 7},
        {"sleep 7:00 mon,tru", "days", "mon,tru", "", 12},
        {"sleep 7:00 +x", "days", "+x", "", 12},
        {"é 7:00 sleep x=1", "word", "é", nullptr, 1},
        {"backup 7:00", "action", "backup", nullptr, 1},
        {"é 7:00", "action", "é", nullptr, 1},
        {"  sleep", "no-time", "", "", 3},
        {"7:00", "no-action", "", nullptr, 1},
        {"7:00 sleep 8:00", "twice", "8:00", "", 12},
        {"7:00 sleep on off", "twice", "off", "", 15},
        {"7:00 sleep idle=1", "option", "idle=1", "only-when-idle, idle-minutes, start-up, parameters", 12},
        {"7:00 org.x.Other text=a", "option", "text=a", "wake-up, start-up, parameters", 18},
        {"7:00 sleep idle-minutes=0", "value", "idle-minutes=0", "1-999", 12},
        {"7:00 sleep start-up=1", "value", "start-up=1", "yes, no", 12},
        {"7:00 sleep wake-up=yes", "fixed", "wake-up=yes", "", 12},
        {"7:00 sleep idle-minutes=1 idle-minutes=1", "twice", "idle-minutes=1", "", 27},
        {"7:00 sleep -- a", "words", "--", "", 12},
        {"7:00 org.x.Start -- b.sh", "program", "b.sh", "", 21},
        {"7:00 org.x.Start wake-up=yes", "no-program", "", "", 1},
        {R"(7:00 sleep parameters={\"a\":)" + std::string(70, '[') + std::string(70, ']') + "}", "deep", nullptr, "",
         12},
        {"7:00 run -- $'a\\nb'", "words", "--", "", 10},
        {"7:00 sleep parameters=[1]", "json", "parameters=[1]", "", 12},
        {"7:00 sleep \"text=\xFF\"", "text", nullptr, "", 12},
        {"'{\"a\":1,\"é\":nan}'", "json", nullptr, "", 12},
        {"{\"a\":1,\"a\":2}", "json", "{a:1,a:2}", nullptr, 2},
        {"7:00 sleep 'x", "quote", "", "", 12},
        {"options show-in-menu-bar=3000000000", "value", nullptr, "no, yes", 9},
        {"options colour=red", "option", "colour=red", nullptr, 9},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.line);
        const auto reading = readPlanText("# x\n\n" + one.line + "\n7:00 sleep\n", Dictionary(), actions());
        const auto& faults = reading.faults.empty() ? reading.remarks : reading.faults;
        ASSERT_GE(faults.size(), 1U);
        EXPECT_EQ(faults[0].code, one.code);
        if (one.word) EXPECT_EQ(faults[0].word, one.word);
        if (one.allowed) EXPECT_EQ(faults[0].allowed, one.allowed);
        EXPECT_EQ(faults[0].column, one.column);
        EXPECT_EQ(faults[0].line, 3U);
    }
    const auto several = readPlanText("x\n7:00 sleep idle-minutes=x idle=2\n", Dictionary(), actions());
    EXPECT_EQ(several.faults.size(), 4U);
    EXPECT_TRUE(several.preferences.isAbsent());
    EXPECT_EQ(newSchedule("x 7:00"), Value());
    EXPECT_EQ(readPlanText("# x\n\n", Dictionary(), actions()).faults.size(), 1U);
}

TEST(PlanTextTest, ChangesWhatIsNamedAlone) {
    const Value stored(Dictionary{{"Is Enabled", true},
                                  {"Action Type", "org.x.Message"},
                                  {"Action Hour", "07"},
                                  {"Action Minute", "00"},
                                  {"Active On Monday", 2},
                                  {"Own", Data{1}},
                                  {"Action Parameters", Dictionary{{"Text", 5}, {"Own", 1.5}}}});
    const auto changed = [&](const char* words) {
        std::vector<TextFault> faults;
        return changedSchedule(stored, splitLine(words).words, actions(), faults);
    };
    EXPECT_EQ(changed("7:00 on +mon text="), stored);
    EXPECT_EQ(changed("7:30 off"), stored.with("Action Minute", 30).with("Is Enabled", 0));
    EXPECT_EQ(changed("message text=x"),
              stored.with("Action Parameters", stored["Action Parameters"].with("Text", "x")));
    const Value tuesday = changed("-mon +tue");
    EXPECT_EQ(tuesday["Active On Monday"], Value(0));
    EXPECT_EQ(tuesday["Active On Tuesday"], Value(1));
    EXPECT_EQ(changed("sleep idle-minutes=20")["Action Parameters"]["Own"], Value());
    EXPECT_EQ(changed("colour=red"), Value());
}

/// Any content that may be stored.
class Content {
public:
    explicit Content(unsigned seed) : _random(seed) {}

    Value preferences() {
        Array list;
        for (int count = upTo(6); count > 0; --count) list.push_back(schedule());
        const auto number = [this] { return Value(maybe() ? upTo(2) : upTo(100) - 50); };
        return Dictionary{{"Check Updates", number()},    {"Check Updates Frequency", number()},
                          {"Show In Menu Bar", number()}, {"Enable Network Administration", number()},
                          {"Prefs Version", 1},           {"Schedule Array", list}};
    }

private:
    int upTo(int most) { return static_cast<int>(_random() % static_cast<unsigned>(most + 1)); }
    bool maybe() { return upTo(1) == 1; }
    template <class T, std::size_t N>
    const T& oneOf(const T (&all)[N]) {
        return all[_random() % N];
    }

    Value schedule() {
        static constexpr const char* kKeys[] = {"Is Enabled",       "Action Type",      "Action Hour",
                                                "Action Minute",    "Active On Monday", "Active On Sunday",
                                                "Action Parameters"};
        static constexpr const char* kTypes[] = {"com.quorel.plugin.Sleep",
                                                 "org.x.Run",
                                                 "org.x.Message",
                                                 "org.a.Backup",
                                                 "com.quorel.plugin.WakeUp",
                                                 "com.other.Thing",
                                                 "Thing",
                                                 "",
                                                 "a=b.c"};
        Value one(Dictionary{{"Action Type", oneOf(kTypes)},
                             {"Action Hour", maybe() ? Value(upTo(25)) : Value("07")},
                             {"Active On Friday", maybe()},
                             {"Is Enabled", 1}});
        if (maybe()) one = one.with("Action Parameters", parameters());
        if (upTo(3) == 0) one = one.with(oneOf(kKeys), value(0));
        if (upTo(5) == 0) one = one.with(text(), value(0));
        return one;
    }

    Value parameters() {
        static constexpr const char* kKeys[] = {"Only When Idle", "Idle Minutes",  "Program",       "Arguments", "Text",
                                                "Restart",        "Needs Wake Up", "Needs Startup", "Wake Up",   "Own"};
        Value all = Dictionary();
        for (int count = upTo(3); count > 0; --count) all = all.with(oneOf(kKeys), maybe() ? Value(text()) : value(0));
        return all;
    }

    Value value(int depth) {
        static constexpr double kReals[] = {0.0,
                                            -0.0,
                                            1.0,
                                            1e300,
                                            0.1,
                                            std::numeric_limits<double>::infinity(),
                                            std::numeric_limits<double>::quiet_NaN()};
        switch (upTo(depth > 3 ? 6 : 8)) {
            case 0:
                return maybe();
            case 1:
                return static_cast<std::int64_t>(_random() << 32U | _random());
            case 2:
                return oneOf(kReals);
            case 3:
                return Date{upTo(1000) * 1e6};
            case 4:
                return Data(static_cast<std::size_t>(upTo(4)), 0xFE);
            case 5:
                return upTo(3);
            case 6:
                return text();
            case 7:
                return Array{value(depth + 1), value(depth + 1)};
            default:
                return Dictionary{{text(), value(depth + 1)}, {"$date", value(depth + 1)}};
        }
    }

    std::string text() {
        static constexpr const char* kParts[] = {"a", " ",    "\n",  "\t",    "\r",     "'",          "\"", "\\",
                                                 "$", "#",    "=",   "--",    "\u00E9", "\U0001F600", "{",  "}",
                                                 ",", "7:00", "mon", "$real", "\x7F",   "/bin/x",     "yes"};
        std::string result;
        for (int count = upTo(3); count > 0; --count) result += oneOf(kParts);
        return result;
    }

    std::mt19937_64 _random;
};

TEST(PlanTextTest, WhateverMayBeStoredComesBack) {
    const Value empty = Content(0).preferences().with("Schedule Array", Array{});
    for (unsigned seed = 1; seed <= 500; ++seed) {
        SCOPED_TRACE(seed);
        const Value stored = decodePropertyList(encodePropertyList(Content(seed).preferences()).value_or(""));
        ASSERT_EQ(faultInPreferences(stored), std::nullopt);
        const std::string text = planText(stored, actions());
        const PlanReading same = readPlanText(text, stored, actions());
        for (const TextFault& fault : same.faults)
            FAIL() << fault.code << " at " << fault.line << ":" << fault.column << " of\n" << text;
        EXPECT_EQ(encodePropertyList(same.preferences), encodePropertyList(stored)) << text;
        // On another computer the same is read, if in other kinds.
        const PlanReading other = readPlanText(text, empty, actions());
        EXPECT_EQ(planText(other.preferences, actions()), text);
        EXPECT_TRUE(changesBetween(stored, other.preferences, actions()).isNone());
    }
}

TEST(PlanTextTest, ChangesAreTold) {
    const auto read = [](std::string_view text) { return readPlanText(text, Dictionary(), actions()).preferences; };
    const Value before = read("7:00 sleep\n8:00 sleep\n8:00 sleep\n"),
                after = read("8:00 sleep\n9:00 sleep\n7:00 sleep\n");
    const PlanChanges changes = changesBetween(before, after, actions());
    EXPECT_EQ(changes.removed, std::vector<std::string>{"08:00 daily sleep"});
    EXPECT_EQ(changes.added, std::vector<std::string>{"09:00 daily sleep"});
    EXPECT_TRUE(changes.isReordered);
}

}  // namespace
}  // namespace quorel
