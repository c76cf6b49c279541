#include "model/PlainText.h"

#include <gtest/gtest.h>

#include "model/PropertyList.h"
#include "model/Utf8.h"

namespace quorel {
namespace {

TEST(PlainTextTest, LeavesNothingThatActsWhereItIsShown) {
    const std::string_view kept[] = {"", "été, 東京 😀", "\uFFFD", "\u00A0", "\u2027\u202F", "\U0001FFFD", "<a&b>"};
    for (const std::string_view text : kept) EXPECT_EQ(plainText(text), text);
    const std::string_view replaced[] = {
        "\x1b",   "\n",     "\x7f",     "\u0080",       "\u009B",           "\u061C",  // controls and direction
        "\u200E", "\u2028", "\u2029",   "\u202E",       "\u2066",           "\u2069",
        "\uFDD0", "\uFDEF", "\uFFFE",   "\uFFFF",       "\U0001FFFE",       "\U0010FFFF",  // noncharacters
        "\xff",   "\xc3",   "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80",                // no UTF-8
    };
    for (const std::string_view text : replaced) {
        const std::string plain = plainText(text);
        EXPECT_EQ(plain.find_first_not_of("\xEF\xBF\xBD"), std::string::npos) << text;
        EXPECT_FALSE(plain.empty());
    }
    EXPECT_EQ(plainText(std::string(119, 'a') + "é" + "b"), std::string(119, 'a') + "é");
    EXPECT_EQ(plainLine(std::string(500, 'a') + "\n"), std::string(500, 'a') + "\uFFFD");
    EXPECT_EQ(plainLines("a\r\n\tb\uFDD0"), "a\r\n\tb\uFFFD");
    EXPECT_EQ(escapedMarkup("<b>&"), "&lt;b&gt;&amp;");
    EXPECT_EQ(withoutMarkup("<b>"), "‹b>");
}

TEST(PlainTextTest, PropertyListsArePlainAndLoseNothing) {
    const Value value("\uFDD0\U0001FFFE\u202E\u0085\r\n\t<&");
    const auto written = encodePropertyList(value);
    ASSERT_TRUE(written);
    EXPECT_EQ(plainLines(*written), *written);
    EXPECT_EQ(decodePropertyList(*written), value);
}

TEST(PlainTextTest, EveryCharacterReadsAsItWasWritten) {
    for (char32_t c = 0; c <= 0x110000; ++c) {
        std::string text;
        const bool is = appendCharacter(text, c);
        std::string_view rest = text;
        const bool isRead = is && takeCharacter(rest) == c && rest.empty();
        if (isRead != (c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF))) FAIL() << std::hex << std::uint32_t(c);
    }
}

}  // namespace
}  // namespace quorel
