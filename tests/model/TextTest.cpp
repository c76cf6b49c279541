#include <gtest/gtest.h>

#include "model/Dictionary.h"
#include "model/PropertyListText.h"

namespace quorel {
namespace {

std::string nested(std::size_t depth) {
    return std::string(depth, '(') + std::string(depth, ')');
}

TEST(TextTest, ReadsWhatGnustepWrites) {
    const struct {
        const char* bytes;
        Value value;
    } cases[] = {
        {"\xEF\xBB\xBF{ NSExecutable = \"Sleep\"; a = (1, 2); }",
         Dictionary{{"NSExecutable", "Sleep"}, {"a", Array{"1", "2"}}}},
        {"/* of {*/ { a = com.x-y_z/$1:+; // b\n \"c d\" = {}; e = (x,); f = g }//",
         Dictionary{{"a", "com.x-y_z/$1:+"}, {"c d", Dictionary()}, {"e", Array{"x"}}, {"f", "g"}}},
        {R"("é\"\\\'\n\t\101\U00e9\U20ac//")", "é\"\\'\n\tAé€//"},
        {"{a=1;a=2;}", Dictionary{{"a", "2"}}},
        {"(\"\")", Array{""}},
    };
    for (const auto& [bytes, value] : cases) EXPECT_EQ(decodePropertyListText(bytes), value) << bytes;
    EXPECT_TRUE(decodePropertyListText(nested(64)).isPresent());
}

TEST(TextTest, RefusesTheRest) {
    for (const std::string& bytes : {std::string(),
                                     std::string("{"),
                                     std::string("{a=1;"),
                                     std::string("{a;}"),
                                     std::string("{a=;}"),
                                     std::string("{a=1,}"),
                                     std::string("{=1;}"),
                                     std::string("{{}=1;}"),
                                     std::string("(a b)"),
                                     std::string("(,)"),
                                     std::string("{} x"),
                                     std::string("{a=<0fbd>;}"),
                                     std::string("\"a"),
                                     std::string("\"\\"),
                                     std::string("/* a"),
                                     std::string("\"\\U12\""),
                                     std::string("\"\\UD83D\""),
                                     std::string("\"\\200\""),
                                     std::string("\"\\0\""),
                                     std::string("\"\x1b\""),
                                     std::string("\"\xff\""),
                                     std::string("é"),
                                     std::string("a\0", 2),
                                     nested(65),
                                     std::string(60'000, '('),
                                     std::string(60'000, '{')})
        EXPECT_TRUE(decodePropertyListText(bytes).isAbsent()) << bytes.substr(0, 20);
}

}  // namespace
}  // namespace quorel
