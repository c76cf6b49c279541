#include "model/Dictionary.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace quorel {
namespace {

TEST(DictionaryTest, BehavesLikeASortedMap) {
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        Dictionary dictionary;
        std::map<std::string, int> model;
        std::vector<std::pair<Dictionary, std::map<std::string, int>>> snapshots;
        for (int step = 0; step < 60; ++step) {
            const std::string key(1 + random() % 2, static_cast<char>('a' + random() % 5));
            if (random() % 3) {
                dictionary.set(key, step);
                model[key] = step;
            } else {
                dictionary.set(key, {});
                model.erase(key);
            }
            if (step % 10 == 0) snapshots.emplace_back(dictionary, model);
        }
        snapshots.emplace_back(dictionary, model);
        for (const auto& [content, expected] : snapshots) {
            ASSERT_EQ(content.size(), expected.size());
            std::size_t index = 0;
            for (const auto& [key, value] : expected) {
                EXPECT_EQ(content.keyAt(index), key);
                EXPECT_EQ(content.valueAt(index++), Value(value));
                EXPECT_EQ(content[key], Value(value));
            }
            EXPECT_TRUE(content["none"].isAbsent());
        }
    }
}

}  // namespace
}  // namespace quorel
