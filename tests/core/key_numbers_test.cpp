#include "tessera/core/key_numbers.h"

#include <array>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tessera/core/key_filter.h"
#include "tessera/core/key_hash.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/random_texts.h"

namespace MERVO::Tessera {
namespace {

/// Numbers the texts in a table and in a map. `mask` cuts the hashes, so that they meet.
void ExpectNumbersOfAMap(std::uint32_t mask, std::uint32_t expected)
{
    KeyNumbers numbers(expected);
    std::vector<std::string> keys;
    std::map<std::string, std::uint32_t> model;
    const auto hashOf = [mask](const std::string& text) { return HashOf(std::string_view(text)) & mask; };
    for (const std::string& text : RandomTexts(3000)) {
        const auto isText = [&](std::uint32_t number) {
            EXPECT_EQ(hashOf(keys.at(number)), hashOf(text)) << "only these need to be told apart";
            return keys.at(number) == text;
        };
        const auto known = model.find(text);
        ASSERT_EQ(numbers.Find(hashOf(text), isText), known == model.end() ? KeyNumbers::NONE : known->second);
        const std::uint32_t number = model.try_emplace(text, static_cast<std::uint32_t>(model.size())).first->second;
        ASSERT_EQ(numbers.FindOrAdd(hashOf(text), isText), number);
        if (number == keys.size()) {
            keys.push_back(text);
        }
        ASSERT_EQ(numbers.Count(), keys.size());
    }
    const KeyFilter filter(numbers);
    for (const std::string& key : keys) {
        EXPECT_TRUE(filter.MayHave(hashOf(key)));
    }
}

TEST(KeyNumbers, AreThoseOfAMap)
{
    ExpectNumbersOfAMap(0xFFFFFFFF, 0);
    ExpectNumbersOfAMap(0xFFFFFFFF, 1500);
    ExpectNumbersOfAMap(0xC0000001, 0); // chains that run over the end of the table
}

TEST(KeyNumbers, StandWhereMemoryIsShort)
{
    KeyNumbers numbers;
    const auto isKey = [](std::uint32_t) { return true; };
    bool hasFailed = false;
    for (std::uint32_t key = 0; key < 100; ++key) {
        const FailingAllocation failing(0);
        try {
            numbers.FindOrAdd(HashOf(key), isKey);
        } catch (const std::bad_alloc&) {
            hasFailed = true;
            EXPECT_EQ(numbers.Count(), key);
            EXPECT_EQ(numbers.Find(HashOf(key), isKey), KeyNumbers::NONE);
        }
        if (hasFailed) {
            break;
        }
    }
    EXPECT_TRUE(hasFailed);
    for (std::uint32_t key = 0; key < 100; ++key) {
        EXPECT_EQ(numbers.FindOrAdd(HashOf(key), isKey), key);
    }
}

TEST(KeyFilter, PassesAllKeysAndFewOthers)
{
    constexpr std::uint32_t OTHERS = 100000;
    for (const auto& [keys, mostPassed] : {std::array{1000U, 2000U}, {10000U, 6000U}}) { // few ones, many ones
        KeyNumbers numbers;
        const auto hashOf = [](std::uint32_t key) { return HashOf(std::uint64_t{key} << 40); };
        for (std::uint32_t key = 0; key < keys; ++key) {
            numbers.FindOrAdd(hashOf(key), [](std::uint32_t) { return false; });
        }
        const KeyFilter filter(numbers);
        std::uint32_t passed = 0;
        for (std::uint32_t key = 0; key < keys + OTHERS; ++key) {
            passed += filter.MayHave(hashOf(key)) ? 1 : 0;
        }
        EXPECT_GE(passed, keys);
        EXPECT_LT(passed, keys + mostPassed);
    }
}

TEST(KeyHash, TellsNumbersAndTextsApart)
{
    std::set<std::uint32_t> ofNumbers;
    std::set<std::uint32_t> ofTexts;
    for (std::uint32_t i = 0; i < 32; ++i) {
        for (std::uint32_t low = 1; low < 1024; low += 2) {
            ofNumbers.insert(HashOf(low << i)); // low * 2^i is another number for every pair, unless bits are cut off
        }
        std::string text(i, 'x');
        ofTexts.insert(HashOf(std::string_view(text)));
        for (char& letter : text) {
            letter = 'y';
            ofTexts.insert(HashOf(std::string_view(text)));
            letter = 'x';
        }
    }
    std::set<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < 32; ++i) {
        for (std::uint32_t low = 1; low < 1024; low += 2) {
            numbers.insert(low << i);
        }
    }
    EXPECT_EQ(ofNumbers.size(), numbers.size());
    EXPECT_EQ(ofTexts.size(), 32U + 31U * 32U / 2U);
}

} // namespace
} // namespace MERVO::Tessera
