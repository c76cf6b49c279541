#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "model/Dictionary.h"
#include "model/PropertyList.h"

namespace quorel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

std::string plist(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
}

TEST(XmlTest, ReadsWhatStandsThere) {
    const struct {
        std::string xml;
        Value value;
    } cases[] = {
        {"<true/>", true},
        {"<false></false>", false},
        {"<integer>0</integer>", 0},
        {"<integer> -1\n</integer>", -1},
        {"<integer>+7</integer>", 7},
        {"<integer>0x1F</integer>", 31},
        {"<integer>-9223372036854775808</integer>", kLowest},
        {"<integer>9223372036854775807</integer>", kHighest},
        {"<real>1</real>", 1.0},
        {"<real>+1.5e-3</real>", 0.0015},
        {"<real>-infinity</real>", -kInfinity},
        {"<date>2001-01-01T00:00:00Z</date>", Date{0}},
        {"<date>2100-02-28T23:59:59Z</date>", Date{3129235199}},
        {"<date>0001-01-01T00:00:00Z</date>", Date{-63113904000}},
        {"<data></data>", Data{}},
        {"<data>\n\tAQ ID\n</data>", Data{1, 2, 3}},
        {"<data>/+8=</data>", Data{255, 239}},
        {"<data>/w==</data>", Data{255}},
        {"<string/>", ""},
        {"<string> a\tb\n</string>", " a\tb\n"},
        {"<string>&lt;&amp;&gt;&quot;&apos;&#233;&#x1F600;&#13;</string>", "<&>\"'é😀\r"},
        {"<string>a<![CDATA[<b>&amp;]]>c<!-- <d> -->e</string>", "a<b>&amp;ce"},
        {"<array/>", Array{}},
        {"<array> <!-- <array> --> <true/> </array>", Array{true}},
        {"<dict/>", Dictionary()},
        {"<dict><key>b</key><integer>1</integer><key>a</key><dict></dict></dict>",
         Dictionary{{"a", Dictionary()}, {"b", 1}}},
        {"<dict><key></key><true/></dict>", Dictionary{{"", true}}},
        {"<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>", Dictionary{{"a", 2}}},
    };
    for (const auto& [xml, value] : cases) EXPECT_EQ(decodePropertyList(plist(xml)), value) << xml;
}

TEST(XmlTest, RefusesWhatIsMalformed) {
    const std::string contents[] = {
        "",
        "text",
        "<true/><true/>",
        "<unknown/>",
        "<true>1</true>",
        "<array>text</array>",
        "<dict><key>a</key>text<true/></dict>",
        "<string><b/></string>",
        "<key>a</key>",
        "<plist><true/></plist>",
        "<dict><true/></dict>",
        "<dict><key>a</key></dict>",
        "<dict><key>a</key><key>b</key><true/></dict>",
        "<integer></integer>",
        "<integer>abc</integer>",
        "<integer>9223372036854775808</integer>",
        "<integer>-9223372036854775809</integer>",
        "<integer>18446744073709551615</integer>",
        "<real></real>",
        "<real>1,5</real>",
        "<date>junk</date>",
        "<date>2001-02-29T00:00:00Z</date>",
        "<date>2001-01-01T24:00:00Z</date>",
        "<date>0000-01-01T00:00:00Z</date>",
        "<data>!</data>",
        "<data>A</data>",
        "<data>AQ</data>",
        "<data>AQ=D</data>",
        "<string>&#xFFFF;</string>",
        "<string>\xef\xbf\xbf</string>",
    };
    for (const auto& content : contents) EXPECT_TRUE(decodePropertyList(plist(content)).isAbsent()) << content;

    const std::string wholes[] = {
        "",
        "<true/>",
        "<plist/>",
        "<other><true/></other>",
        "<!DOCTYPE plist []><plist><true/></plist>",
        "<!DOCTYPE plist SYSTEM 'file:///x'><plist><string>a&b;c</string></plist>",
        "<!DOCTYPE plist [<!ENTITY a \"aaa\">]><plist><string>&a;</string></plist>",
        "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><plist><string>&a;</string></plist>",
    };
    for (const auto& whole : wholes) EXPECT_TRUE(decodePropertyList(whole).isAbsent()) << whole;
}

TEST(XmlTest, WhatIsWrittenReadsAsTheSame) {
    const Value values[] = {
        true,
        false,
        0,
        -1,
        kLowest,
        kHighest,
        0.1,
        1.0,
        -0.0,
        1e300,
        5e-324,
        kInfinity,
        -kInfinity,
        Date{0},
        Date{3129235199},
        Date{-63113904000},
        "",
        " <&>\"']]>\t\n\r é 漢 😀 \u2028 ",
        std::string(100'000, '&'),
        Data{},
        Data{0},
        Data{0, 255},
        Data{0, 255, 128},
        Data(1000, 7),
        Array{},
        Array{Array{}, Dictionary(), 1, "1", 1.0, true},
        Dictionary{{"", ""}, {"<&>\n", 1}, {"é", Dictionary{{"é", Array{false}}}}},
    };
    for (const auto& value : values) {
        const auto xml = encodePropertyList(value);
        ASSERT_TRUE(xml);
        EXPECT_EQ(decodePropertyList(*xml), value) << xml->substr(0, 400);
    }
}

TEST(XmlTest, WritesNothingThatCouldNotBeRead) {
    const Value values[] = {
        Value(),
        Array{Value()},
        Dictionary{{"k", Array{1, Value()}}},
        std::string("a\0b", 3),
        "\xff",
        "\xc0\xaf",          // overlong
        "\xed\xa0\x80",      // a surrogate
        "\xf4\x90\x80\x80",  // beyond the last character
        "\xe2\x82",
        "\xef\xbf\xbe",
        "\x1b",
        Dictionary{{"\xff", 1}},
        Date{1e18},
        Date{-1e18},
        Date{std::numeric_limits<double>::quiet_NaN()},
        Date{252423993600},  // the year 10000
    };
    for (const auto& value : values) EXPECT_FALSE(encodePropertyList(value)) << &value - values;
}

TEST(XmlTest, FractionsOfASecondAreCutOff) {
    EXPECT_EQ(decodePropertyList(*encodePropertyList(Date{1.75})), Value(Date{1}));
    EXPECT_EQ(decodePropertyList(*encodePropertyList(Date{-0.25})), Value(Date{-1}));
}

}  // namespace
}  // namespace quorel
