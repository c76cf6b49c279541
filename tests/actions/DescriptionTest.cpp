#include <gtest/gtest.h>

#include "actions/ActionDescription.h"
#include "actions/DescriptionKeys.h"
#include "model/ActionParameters.h"

namespace quorel {
namespace {

using Words = std::vector<std::string>;

/// Every kind of option, as an author writes it.
constexpr const char* kTea = R"({ QuorelActionFormat = 1; VXEditClass = VXDescribedPlugIn;
    QuorelActionType = "org.x.MakeTea"; QuorelActionNames = { fr = "Thé"; en = "Tea"; };
    QuorelActionSays = { en = "Makes tea"; }; QuorelActionProgram = brew; QuorelActionRunsAs = user;
    QuorelActionTimeLimit = 60; QuorelActionWakesUp = always; QuorelActionStartsUp = "choice-on";
    QuorelActionOptions = (
        { Key = "Is Sweet"; Kind = flag; Label = { en = "Sweet"; }; Says = { en = "sweet"; fr = "sucré"; }; },
        { Key = Spoons; Kind = number; Label = { en = "Spoons"; }; Default = 2; Least = 1; Most = 9;
          DependsOn = "Is Sweet"; Says = { en = "%@ spoons"; }; },
        { Key = Leaf; Kind = choice; Label = { en = "Leaf"; }; Says = { en = "of %@"; };
          Choices = ( { Value = green; Names = { en = "Green"; }; }, { Value = black; Names = { en = "Black"; }; } ); },
        { Key = Until; Kind = time; Label = { en = "Until"; }; Default = "17:00"; },
        { Key = Cup; Kind = text; Label = { en = "Cup"; }; IsFile = YES; TakesWords = YES; Says = { en = "%@"; }; },
        { Key = Guests; Kind = lines; Label = { en = "Guests"; }; TakesWords = 1; Says = { fr = "é %@"; }; } ); })";

ActionDescription tea() {
    return ActionDescription::read("Tea.vxplugin", kTea);
}

Dictionary usual() {
    return {{"Is Sweet", false},
            {"Spoons", 2},
            {"Leaf", "green"},
            {"Until", "17:00"},
            {"Cup", ""},
            {"Guests", ""},
            {parameters::kNeedsWakeUp, true},
            {parameters::kNeedsStartup, false}};
}

TEST(Description, CompletesWhateverIsStored) {
    const ActionDescription action = tea();
    ASSERT_TRUE(action.isSound()) << action.faults[0].code << " " << action.faults[0].key;
    EXPECT_EQ(action.standards(), Value(usual()).with(parameters::kNeedsStartup, true));
    for (const Value& nothing : {Value(), Value(3), Value(Array{1}), Value(Dictionary())})
        EXPECT_EQ(action.completed(nothing), Value(usual()));

    const Value odd[] = {"12",    "12x",  "",      99,    1e300, true, Array{1}, Dictionary{{"a", 1}},
                         Data{1}, Date{}, "black", "8:05"};
    const struct {
        const char* key;
        std::vector<Value> shown;
    } cases[] = {
        {"Is Sweet", {true, true, false, true, true, true, false, false, false, false, false, true}},
        {"Spoons", {9, 9, 1, 9, 9, 1, 2, 2, 2, 2, 1, 8}},
        {"Leaf",
         {"green", "green", "green", "green", "green", "green", "green", "green", "green", "green", "black", "green"}},
        {"Until",
         {"17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "17:00", "08:05"}},
        {"Cup", {"12", "12x", "", "", "", "", "", "", "", "", "black", "8:05"}},
        {parameters::kNeedsWakeUp.data(), std::vector<Value>(std::size(odd), true)},
        {parameters::kNeedsStartup.data(),
         {true, true, false, true, true, true, false, false, false, false, false, true}},
        {"Remark", std::vector<Value>(std::begin(odd), std::end(odd))},
    };
    for (const auto& [key, shown] : cases) {
        for (std::size_t i = 0; i < std::size(odd); ++i)
            EXPECT_EQ(action.completed(Dictionary{{key, odd[i]}}), Value(usual()).with(key, shown[i]))
                << key << " " << i;
    }
}

TEST(Description, TakesWordsAsTheyAreTyped) {
    const ActionDescription action = tea();
    const struct {
        const char *key, *word;
        Value value;
    } cases[] = {
        {"Is Sweet", "yes", true},  {"Is Sweet", "no", false},     {"Is Sweet", "1", {}},
        {"Spoons", "9", 9},         {"Spoons", "10", {}},          {"Spoons", "2h", {}},
        {"Spoons", "", {}},         {"Spoons", "99999999999", {}}, {"Leaf", "black", "black"},
        {"Leaf", "Black", {}},      {"Until", "7:30", "07:30"},    {"Until", "24:00", {}},
        {"Until", "730", {}},       {"Cup", "a b", "a b"},         {"Cup", "a\nb", {}},
        {"Guests", "a\nb", "a\nb"}, {"Guests", "\x1b[1m", {}},
    };
    for (const auto& [key, word, value] : cases) {
        const auto read = action.option(key)->valueOf(word);
        EXPECT_EQ(read.value_or(Value()), value) << key << " " << word;
        if (read && *key != 'U') EXPECT_EQ(action.option(key)->wordOf(*read), word);
    }
    EXPECT_EQ(action.option("Is Sweet")->allowed(), "yes, no");
    EXPECT_EQ(action.option("Spoons")->allowed(), "1-9");
    EXPECT_EQ(action.option("Leaf")->allowed(), "green, black");
    EXPECT_EQ(typedName("Only When Idle"), "only-when-idle");
    EXPECT_EQ(typedName("WakeUp"), "wake-up");

    const Value given = Dictionary{{"Cup", "big"}, {"Guests", "Ann"}};
    EXPECT_EQ(action.withWords(given, Words{}), given);
    EXPECT_EQ(action.withWords(given, Words{"small", "--all", "a b"}),
              Value(Dictionary{{"Cup", "small"}, {"Guests", "--all\na b"}}));
    EXPECT_FALSE(action.withWords(given, Words{"small", "a\nb"}));
    ActionDescription prose = action;
    prose.options.erase(prose.options.end() - 2);
    EXPECT_EQ(prose.withWords({}, Words{"Tea", "is\nready"}), Value(Dictionary{{"Guests", "Tea is\nready"}}));
    EXPECT_FALSE(ActionDescription().withWords(given, Words{"a"}));
}

TEST(Description, SaysItInOneLine) {
    const struct {
        Dictionary parameters;
        const char *english, *french;
    } cases[] = {
        {{}, "Makes tea", "Makes tea"},
        {{{"Is Sweet", 1}}, "Sweet, 2 spoons", "Sucré, 2 spoons"},
        {{{"Spoons", 3}, {"Leaf", "black"}}, "Of Black", "Of Black"},
        {{{"Cup", "/home/ann/my cup"}}, "my cup", "my cup"},
        {{{"Cup", "a\nb\x1b"}}, "a b\uFFFD", "a b\uFFFD"},
        {{{"Guests", "Ann"}}, "É Ann", "É Ann"},
    };
    for (const auto& [parameters, english, french] : cases) {
        EXPECT_EQ(tea().line(parameters, "en"), english);
        EXPECT_EQ(tea().line(parameters, "fr"), french);
    }
    EXPECT_EQ(ActionDescription::from(
                  "", Dictionary{{"QuorelActionType", "a"}, {"QuorelActionNames", Dictionary{{"de", "Tee"}}}})
                  .line({}, "fr"),
              "Tee");
}

/// The description of tea with one text replaced.
std::string teaWith(std::string_view what, const std::string& by) {
    std::string text = kTea;
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
}

TEST(Description, NamesWhatIsWrong) {
    std::string many;
    for (char c = 'a'; c <= 'q'; ++c) many += std::string("{ Key = ") + c + "; Kind = flag; Label = { en = x; }; },";
    const struct {
        std::string_view what;
        std::string by;
        const char *fault, *key;
    } cases[] = {
        {"QuorelActionFormat = 1;", "", "missing", "QuorelActionFormat"},
        {"QuorelActionFormat = 1;", "QuorelActionFormat = 2;", "format", "QuorelActionFormat"},
        {"VXEditClass = VXDescribedPlugIn;", "", "missing", "VXEditClass"},
        {"\"org.x.MakeTea\"", "\"\"", "no-words", nullptr},
        {"QuorelActionType = \"org.x.MakeTea\"", "QuorelActionType = (a)", "no-words", nullptr},
        {"org.x.MakeTea", "org=x", "text", "QuorelActionType"},
        {"QuorelActionNames", "QuorelActionNamen", "missing", "QuorelActionNames"},
        {"QuorelActionSays", "QuorelActionSagt", "unknown", "QuorelActionSagt"},
        {"\"Tea\"", "\"<b>Tea</b>\"", "text", "QuorelActionNames en"},
        {"\"Makes tea\"", std::string(121, 'x'), "text", "QuorelActionSays en"},
        {"always", "sometimes", "unknown", "QuorelActionWakesUp"},
        {"TimeLimit = 60", "TimeLimit = 1h", "kind", "QuorelActionTimeLimit"},
        {"TimeLimit = 60", "TimeLimit = 0", "range", "QuorelActionTimeLimit"},
        {"RunsAs = user", "RunsAs = user; QuorelActionNeeds = (root)", "unknown", "QuorelActionNeeds"},
        {"org.x.MakeTea", "com.quorel.plugin.Sleep", "unknown", "QuorelActionProgram"},
        {"QuorelActionSays", "VXEditClass = VXDescribedPlugIn; QuorelActionSays", "doubled", "VXEditClass"},
        {"{ fr = \"Thé\"; en = \"Tea\"; }", "{}", "missing", "QuorelActionNames"},
        {"Kind = text; Label = { en = \"Cup\"; }; IsFile = YES;", "Kind = lines; Label = { en = \"Cup\"; };", "unknown",
         "QuorelActionOptions 6 TakesWords"},
        {"Program = brew", "Program = \"../brew\"", "malformed", "QuorelActionProgram"},
        {"Program = brew", "Program = \"/bin/sh\"", "malformed", "QuorelActionProgram"},
        {"Program = brew", "Program = \"$brew\"", "malformed", "QuorelActionProgram"},
        {"Program = brew", "Program = \".brew\"", "malformed", "QuorelActionProgram"},
        {"RunsAs = user", "RunsAs = nobody", "malformed", "QuorelActionRunsAs"},
        {"RunsAs = user", "RunsAs = system; QuorelActionNeeds = (everything)", "malformed", "QuorelActionNeeds"},
        {"RunsAs = user", "RunsAs = system; QuorelActionNeeds = network", "malformed", "QuorelActionNeeds"},
        {"RunsAs = user", "RunsAs = system; QuorelActionWrites = (\"/\")", "malformed", "QuorelActionWrites"},
        {"RunsAs = user", "RunsAs = system; QuorelActionWrites = (relative)", "malformed", "QuorelActionWrites"},
        {"RunsAs = user", "RunsAs = system; QuorelActionWrites = (\"/a/../b\")", "malformed", "QuorelActionWrites"},
        {"RunsAs = user", "RunsAs = system; QuorelActionWrites = (\"/var/%h\")", "malformed", "QuorelActionWrites"},
        {"Program = brew", "Program = \"\"", "no-program", nullptr},
        {"QuorelActionOptions = (", "QuorelActionOptions = (" + many, "too-many", "QuorelActionOptions"},
        {"QuorelActionOptions = (", "QuorelActionOptions = ( tea,", "kind", "QuorelActionOptions 1 Key"},
        {"Key = Spoons;", "", "missing", "QuorelActionOptions 2 Key"},
        {"Key = Spoons;", "Key = \"is sweet\";", "doubled", "QuorelActionOptions 2 Key"},
        {"Key = Spoons;", "Key = \"Wake-Up\";", "doubled", "QuorelActionOptions 2 Key"},
        {"Kind = number", "Kind = count", "unknown", "QuorelActionOptions 2 Kind"},
        {"Label = { en = \"Spoons\"; };", "", "missing", "QuorelActionOptions 2 Label"},
        {"Default = 2;", "", "missing", "QuorelActionOptions 2 Default"},
        {"Default = 2;", "Default = 0;", "range", "QuorelActionOptions 2 Default"},
        {"Default = 2;", "Default = 2x;", "kind", "QuorelActionOptions 2 Default"},
        {"Least = 1;", "Least = 10;", "range", "QuorelActionOptions 2 Most"},
        {"DependsOn = \"Is Sweet\"", "DependsOn = Leaf", "unknown", "QuorelActionOptions 2 DependsOn"},
        {"Kind = choice;", "Kind = choice; Least = 1;", "unknown", "QuorelActionOptions 3 Least"},
        {"Kind = choice;", "Kind = choice; Default = red;", "range", "QuorelActionOptions 3 Default"},
        {"Value = black", "Value = green", "doubled", "QuorelActionOptions 3 Choices 2 Value"},
        {"Kind = flag;", "Kind = choice;", "missing", "QuorelActionOptions 1 Choices"},
        {"\"17:00\"", "\"25:00\"", "range", "QuorelActionOptions 4 Default"},
        {"{ QuorelActionFormat", "QuorelActionFormat", "unreadable", nullptr},
        {"{ QuorelActionFormat", std::string(64 * 1024, ' ') + "{ QuorelActionFormat", "unreadable", nullptr},
    };
    for (const auto& [what, by, fault, key] : cases) {
        const ActionDescription action = ActionDescription::read("Tea.vxplugin", teaWith(what, by));
        ASSERT_FALSE(action.isSound()) << what << by.substr(0, 60);
        EXPECT_EQ(action.faults[0], (DescriptionFault{fault, key ? key : ""})) << by.substr(0, 60);
        const Value stored = Dictionary{{"Spoons", Array{1}}};
        EXPECT_EQ(action.completed(stored)["Spoons"], stored["Spoons"]) << "options of a broken one are left alone";
    }
}

}  // namespace
}  // namespace quorel
