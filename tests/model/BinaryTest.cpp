#include <gtest/gtest.h>

#include <bit>
#include <limits>

#include "BinaryFile.h"
#include "model/Dictionary.h"
#include "model/PropertyList.h"

namespace quorel {
namespace {

std::string object(unsigned marker, std::string_view content = {}) {
    return static_cast<char>(marker) + std::string(content);
}

std::string real(double number) {
    return bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

TEST(BinaryTest, ReadsEveryKind) {
    constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
    const struct {
        std::vector<std::string> objects;
        Value value;
    } cases[] = {
        {{object(0x08)}, false},
        {{object(0x09)}, true},
        {{object(0x10, "\xff")}, 255},
        {{object(0x11, "\xff\xfe")}, 65534},
        {{object(0x12, "\xff\xff\xff\xff")}, std::int64_t{0xffffffff}},
        {{object(0x13, bigEndian(UINT64_MAX, 8))}, -1},
        {{object(0x13, bigEndian(kSign, 8))}, std::numeric_limits<std::int64_t>::min()},
        {{object(0x14, bigEndian(0, 8) + bigEndian(kSign - 1, 8))}, std::numeric_limits<std::int64_t>::max()},
        {{object(0x14, bigEndian(UINT64_MAX, 8) + bigEndian(UINT64_MAX, 8))}, -1},
        {{object(0x22, bigEndian(std::bit_cast<std::uint32_t>(0.5F), 4))}, 0.5},
        {{object(0x23, real(-1e300))}, -1e300},
        {{object(0x33, real(3128543999))}, Date{3128543999}},
        {{object(0x40)}, Data{}},
        {{object(0x42, std::string("\0\xff", 2))}, Data{0, 255}},
        {{object(0x50)}, ""},
        {{object(0x5f, "\x10\x11" + std::string(17, 'x'))}, std::string(17, 'x')},
        {{object(0x64, std::string("\0A\0\xe9\xd8\x3d\xde\0", 8))}, "Aé😀"},
        {{object(0xa0)}, Array{}},
        {{object(0xd0)}, Dictionary()},
        {{arrayObject({1, 1}), object(0x09)}, Array{true, true}},
        {{dictionaryObject({1, 2, 2, 3}), object(0x51, "b"), object(0x51, "a"), object(0x10, "\x01")},
         Dictionary{{"b", "a"}, {"a", 1}}},
        {{dictionaryObject({1, 1, 1, 2}), object(0x51, "a"), object(0x09)}, Dictionary{{"a", true}}},
    };
    for (const auto& [objects, value] : cases)
        EXPECT_EQ(decodePropertyList(binaryFile(objects)), value) << objects.size() << " " << objects[0].size();
}

TEST(BinaryTest, RefusesWhatIsMalformed) {
    const std::vector<std::string> cases[] = {
        {object(0x00)},                                              // "null"
        {object(0x0f)},                                              // filler
        {object(0x80, "\x05")},                                      // an archive's reference
        {object(0xc0)},                                              // a set
        {object(0x14, bigEndian(0, 8) + bigEndian(UINT64_MAX, 8))},  // 2^64-1
        {object(0x15, std::string(32, '\0'))},
        {object(0x13, "\x01")},
        {object(0x24, std::string(16, '\0'))},
        {object(0x33, real(1e18))},
        {object(0x33, real(std::numeric_limits<double>::quiet_NaN()))},
        {object(0x53, std::string("a\0b", 3))},
        {object(0x51, "\xe9")},
        {object(0x52, "a")},
        {object(0x61, std::string("\xd8\0", 2))},
        {object(0x62, std::string("\xdc\0\xd8\0", 4))},
        {object(0x61, "\xff\xff")},
        {object(0x5f)},
        {object(0x5f, "\x13" + bigEndian(UINT64_MAX, 8))},
        {object(0x6f, "\x13" + bigEndian(std::uint64_t{1} << 63, 8))},
        {object(0xaf, "\x13" + bigEndian(std::uint64_t{1} << 62, 8))},
        {object(0xdf, "\x13" + bigEndian(std::uint64_t{1} << 61, 8))},
        {object(0x5f, "\x50")},
        {arrayObject({1})},  // nobody has that number
        {arrayObject({0xffffffff})},
        {dictionaryObject({1, 1}), object(0x09)},  // the key is no text
        {dictionaryObject({1, 0}), object(0x51, "a")},
        {arrayObject({0})},
        {arrayObject({1}), arrayObject({0})},
    };
    for (const auto& objects : cases)
        EXPECT_TRUE(decodePropertyList(binaryFile(objects)).isAbsent()) << &objects - cases;
}

TEST(BinaryTest, RefusesTrailersThatPointElsewhere) {
    const std::string good = binaryFile({arrayObject({1}), object(0x09)});
    ASSERT_EQ(decodePropertyList(good), Value(Array{true}));
    const std::size_t trailer = good.size() - 32, offsets = trailer - 8;
    const struct {
        std::size_t at;
        std::string bytes;
    } changes[] = {
        {trailer + 6, std::string(1, '\0')},
        {trailer + 6, "\x09"},
        {trailer + 7, std::string(1, '\0')},
        {trailer + 7, "\xff"},
        {trailer + 8, bigEndian(UINT64_MAX, 8)},
        {trailer + 8, bigEndian(3, 8)},
        {trailer + 8, bigEndian(0, 8)},
        {trailer + 16, bigEndian(2, 8)},
        {trailer + 16, bigEndian(UINT64_MAX, 8)},
        {trailer + 24, bigEndian(0, 8)},
        {trailer + 24, bigEndian(trailer, 8)},
        {trailer + 24, bigEndian(UINT64_MAX, 8)},
        {offsets, bigEndian(0, 4)},
        {offsets, bigEndian(offsets, 4)},
        {offsets, bigEndian(UINT32_MAX, 4)},
    };
    for (const auto& [at, bytes] : changes) {
        std::string bad = good;
        bad.replace(at, bytes.size(), bytes);
        EXPECT_TRUE(decodePropertyList(bad).isAbsent()) << &bytes - &changes[0].bytes;
    }
}

}  // namespace
}  // namespace quorel
