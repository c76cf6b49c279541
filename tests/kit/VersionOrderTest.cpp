#include "kit/update/VersionOrder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorel {
namespace {

const std::string kGoogol = "1" + std::string(60, '0');

// Each line is older than the next; texts on one line are the same version.
const std::vector<std::vector<std::string>> kAscending = {
    {"0", "0.0", "00"},
    {"0.0.1"},
    {"0.9"},
    {"1.0a"},
    {"1.0-alpha.1", "1.0-ALPHA.1", "1.0alpha1", "1.0.0.alpha.01"},
    {"1.0-alpha.beta", "1.0 alpha beta"},
    {"1.0b2"},
    {"1.0b10", "1b10"},
    {"1.0", "1", "1.0.0.0.0", "01.00", "1.0+b2", "1+"},
    {"1.0.0.1"},
    {"1.2", "1.2.", "1.2.0-"},
    {"1.2.10"},
    {"1.10"},
    {"2.5-%n%s"},
    {"18446744073709551615"},
    {"18446744073709551616"},
    {kGoogol},
};

TEST(VersionOrder, PutsEveryPairInTheSameOrderFromBothSides) {
    for (std::size_t i = 0; i < kAscending.size(); ++i)
        for (std::size_t j = 0; j < kAscending.size(); ++j)
            for (const auto& a : kAscending[i])
                for (const auto& b : kAscending[j])
                    EXPECT_TRUE(compareVersions(a, b) == (i <=> j)) << a << " against " << b;
}

TEST(VersionOrder, KnowsWhichTextsItCanOrder) {
    for (const std::string& text :
         {std::string("2"), std::string("2.0 beta 1"), std::string("9.9-%n%s"), std::string(64, '9')})
        EXPECT_TRUE(isVersion(text)) << text;
    for (const std::string& text : {std::string(), std::string("%n%s"), std::string("v2.0"), std::string(".5"),
                                    std::string(" 2.0"), std::string("2.0\n"), std::string("2.0\x7f"),
                                    std::string("2\0"
                                                ".0",
                                                4),
                                    std::string("2.0\u202e"), std::string(65, '9')})
        EXPECT_FALSE(isVersion(text)) << text;
}

}  // namespace
}  // namespace quorel
