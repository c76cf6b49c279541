#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "BinaryFile.h"
#include "model/Dictionary.h"
#include "model/PropertyList.h"

namespace quorel {
namespace {

constexpr std::size_t kMany = 100'000;

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) all += text;
    return all;
}

std::string plist(const std::string& content) {
    return "<plist>" + content + "</plist>";
}

std::string nestedXml(std::size_t depth) {
    return plist(repeated("<array>", depth) + repeated("</array>", depth));
}

/// Each level holds the next one `width` times; the last is empty.
std::string nestedBinary(std::uint32_t depth, std::size_t width = 1) {
    std::vector<std::string> objects;
    for (std::uint32_t i = 1; i < depth; ++i) objects.push_back(arrayObject(std::vector(width, i)));
    objects.push_back(arrayObject({}));
    return binaryFile(objects);
}

Value nestedValue(int depth) {
    Value value{Array{}};
    while (--depth > 0) value = Value(Array{value});
    return value;
}

TEST(LimitsTest, Depth) {
    constexpr int kDeepest = kMaximumPropertyListDepth;
    EXPECT_EQ(decodePropertyList(nestedXml(kDeepest)), nestedValue(kDeepest));
    EXPECT_EQ(decodePropertyList(nestedBinary(kDeepest)), nestedValue(kDeepest));
    EXPECT_TRUE(encodePropertyList(nestedValue(kDeepest)));
    EXPECT_TRUE(decodePropertyList(nestedXml(kDeepest + 1)).isAbsent());
    EXPECT_TRUE(decodePropertyList(nestedBinary(kDeepest + 1)).isAbsent());
    EXPECT_FALSE(encodePropertyList(nestedValue(kDeepest + 1)));
    EXPECT_TRUE(decodePropertyList(nestedXml(kMany)).isAbsent());
    EXPECT_TRUE(decodePropertyList(nestedBinary(kMany)).isAbsent());
    EXPECT_TRUE(decodePropertyList("<plist>" + repeated("<dict><key>k</key>", kMany)).isAbsent());
}

TEST(LimitsTest, SharedObjectsMustNotHideDepth) {
    // The chain below object 1 is read first, as a shallow one, and then hung under a deep path.
    std::vector<std::string> objects{arrayObject({1, 41})};
    for (std::uint32_t i = 1; i < 40; ++i) objects.push_back(arrayObject({i + 1}));
    objects.push_back(arrayObject({}));
    for (std::uint32_t i = 41; i < 80; ++i) objects.push_back(arrayObject({i + 1}));
    objects.push_back(arrayObject({1}));
    EXPECT_TRUE(decodePropertyList(binaryFile(objects)).isAbsent());
}

TEST(LimitsTest, Size) {
    const std::string frame = plist("<string></string>");
    const auto sized = [&](std::size_t size) {
        return plist("<string>" + std::string(size - frame.size(), 'x') + "</string>");
    };
    EXPECT_TRUE(decodePropertyList(sized(kMaximumPropertyListBytes)).isPresent());
    EXPECT_TRUE(decodePropertyList(sized(kMaximumPropertyListBytes + 1)).isAbsent());
    EXPECT_FALSE(encodePropertyList(std::string(kMaximumPropertyListBytes, 'x')));
    EXPECT_FALSE(encodePropertyList(std::string(kMaximumPropertyListBytes / 2, '&')));
    EXPECT_FALSE(encodePropertyList(Array(2'200'000, true)));
}

TEST(LimitsTest, NothingUnfoldsBeyondTheSize) {
    EXPECT_TRUE(decodePropertyList(nestedBinary(6, 8)).isPresent());
    EXPECT_TRUE(decodePropertyList(nestedBinary(30, 10)).isAbsent());
    EXPECT_TRUE(decodePropertyList(nestedBinary(60, 2)).isAbsent());
    const std::string megabyte = "\x5f\x12" + bigEndian(1 << 20, 4) + std::string(1 << 20, 'x');
    EXPECT_TRUE(decodePropertyList(binaryFile({arrayObject(std::vector(15, 1U)), megabyte})).isPresent());
    EXPECT_TRUE(decodePropertyList(binaryFile({arrayObject(std::vector(17, 1U)), megabyte})).isAbsent());
    EXPECT_TRUE(decodePropertyList(binaryFile({arrayObject(std::vector(2'200'000, 1U)), "\x09"})).isAbsent());
}

TEST(LimitsTest, TimeGrowsWithTheSize) {
    std::vector<std::string> objects;
    std::vector<std::uint32_t> members;
    for (std::uint32_t i = 0; i < kMany; ++i) {
        members.push_back(i + 1);
        objects.push_back("\x57" + std::to_string(1'000'000 + i));
    }
    members.insert(members.end(), kMany, 1);
    objects.insert(objects.begin(), dictionaryObject(members));
    const std::clock_t started = std::clock();  // of the processor, however busy the machine is
    EXPECT_TRUE(decodePropertyList(binaryFile(objects)).isPresent());
    // Far above what it takes, also under a sanitizer; a quadratic one takes minutes.
    EXPECT_LT(std::clock() - started, 15 * CLOCKS_PER_SEC);
}

/// Whatever comes in, what comes out can be written and read again. The sanitizers watch the rest.
TEST(LimitsTest, DamagedFiles) {
    const std::string files[] = {
        *encodePropertyList(Dictionary{{"a", Array{1, -1.5, "é&<", true, Date{7}}}, {"b", Data{1, 2}}}),
        binaryFile({dictionaryObject({1, 2, 3, 4}), "\x51\x61", "\x51\x62", arrayObject({4, 5, 1}),
                    std::string("\x62\0A\0B", 5), "\x13" + bigEndian(UINT64_MAX, 8)}),
        "bplist00" + std::string(100, '\0'),
    };
    std::mt19937 random(1);
    int readable = 0;
    for (int round = 0; round < 60'000; ++round) {
        std::string bytes = files[random() % 3];
        for (auto changes = 1 + random() % 4; changes > 0; --changes) {
            const std::size_t place = random() % bytes.size();
            if (random() % 4 == 0)
                bytes.erase(place, 1 + random() % 8);
            else
                bytes[place] = static_cast<char>(random());
            if (bytes.empty()) break;
        }
        const Value value = decodePropertyList(bytes);
        if (value.isAbsent()) continue;
        ++readable;
        const auto xml = encodePropertyList(value);
        ASSERT_TRUE(xml) << round;
        ASSERT_TRUE(decodePropertyList(*xml).isPresent()) << *xml;
    }
    EXPECT_GT(readable, 1000);
}

}  // namespace
}  // namespace quorel
