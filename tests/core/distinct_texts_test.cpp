#include "tessera/core/distinct_texts.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <random>
#include <span>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

#include "tests/support/failing_allocation.h"
#include "tests/support/random_texts.h"

namespace MERVO::Tessera {
namespace {

std::vector<std::uint32_t> NumbersOf(DistinctTexts& distinct, std::span<const std::string> texts)
{
    std::vector<std::uint32_t> numbers(texts.size());
    distinct.Number(0, static_cast<std::uint32_t>(texts.size()), numbers.data());
    return numbers;
}

/// Numbers texts by a map in the order of some positions.
std::vector<std::uint32_t> NumbersOfAMap(std::span<const std::string> texts, std::span<const std::uint32_t> positions)
{
    std::map<std::string, std::uint32_t> model;
    std::vector<std::uint32_t> numbers;
    for (const std::uint32_t position : positions) {
        const auto next = static_cast<std::uint32_t>(model.size());
        numbers.push_back(model.try_emplace(texts[position], next).first->second);
    }
    return numbers;
}

std::vector<std::uint32_t> Upward(std::size_t count)
{
    std::vector<std::uint32_t> positions(count);
    std::iota(positions.begin(), positions.end(), 0U);
    return positions;
}

/// So many that a table grows from few slots to many, and then drops its keys.
constexpr std::uint32_t MANY = 20000;

TEST(DistinctTexts, HaveTheNumbersOfAMap)
{
    for (const std::uint32_t count : {0U, 1U, 1000U, MANY}) {
        const std::vector<std::string> texts = RandomTexts(count);
        const std::vector<std::uint32_t> expected = NumbersOfAMap(texts, Upward(count));
        const std::uint32_t distinctCount = count == 0 ? 0 : *std::max_element(expected.begin(), expected.end()) + 1;
        DistinctTexts distinct(texts);
        EXPECT_EQ(NumbersOf(distinct, texts), expected) << count;
        EXPECT_EQ(NumbersOf(distinct, texts), expected) << count << ", all of them known by now";
        EXPECT_EQ(distinct.Count(), distinctCount);
    }
}

TEST(DistinctTexts, ComeInTheOrderOfPositions)
{
    const std::vector<std::string> texts = RandomTexts(MANY);
    std::vector<std::uint32_t> positions = Upward(MANY);
    std::shuffle(positions.begin(), positions.end(), std::mt19937(7));
    const std::vector<std::uint32_t> expected = NumbersOfAMap(texts, positions);
    DistinctTexts distinct(texts);
    std::vector<std::uint32_t> numbers(MANY);
    for (std::uint32_t first = 0, length = 1; first < MANY; first += length, ++length) { // pieces of all lengths
        length = std::min(length, MANY - first);
        distinct.Number(std::span(positions).subspan(first, length), numbers.data() + first);
    }
    EXPECT_EQ(numbers, expected);
}

TEST(DistinctTexts, TellTextsOfOneHashApart)
{
    for (const char* prefix : {"short ", "a text of any kind, number "}) {
        std::unordered_map<std::uint32_t, std::string> hashed;
        std::vector<std::string> pair;
        for (std::uint32_t i = 0; pair.empty() && i < 1000000; ++i) {
            const std::string text = prefix + std::to_string(i);
            const auto [place, isNew] = hashed.try_emplace(HashOf(TextKey(text)), text);
            if (!isNew && place->second.size() == text.size()) {
                pair = {place->second, text};
            }
        }
        ASSERT_EQ(pair.size(), 2U);
        constexpr std::array<std::array<int, 2>, 3> CASES{{{0, 0}, {1, 1000}, {1000, 1000}}};
        for (const auto& [before, between] : CASES) { // which both, one, or none of the two meet as keys
            std::vector<std::string> texts;
            const auto addOthers = [&texts](int count) {
                for (; count != 0; --count) {
                    texts.push_back("another " + std::to_string(texts.size()));
                }
            };
            addOthers(before);
            texts.push_back(pair[0]);
            addOthers(between);
            texts.insert(texts.end(), {pair[1], pair[0]});
            DistinctTexts distinct(texts);
            EXPECT_EQ(NumbersOf(distinct, texts), NumbersOfAMap(texts, Upward(texts.size()))) << pair[0] << before;
        }
    }
}

TEST(DistinctTexts, TakeLittleMemoryWhereTheyAreMany)
{
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < MANY; ++i) {
        texts.push_back(std::to_string(i));
    }
    const FailingAllocation failing(0, MANY * std::size_t{32}, Shortage::LASTING); // keys alone would take as much
    DistinctTexts distinct(texts);
    EXPECT_EQ(NumbersOf(distinct, texts), Upward(MANY));
}

TEST(DistinctTexts, StandWhereMemoryIsShort)
{
    const std::vector<std::string> texts = RandomTexts(MANY);
    const std::vector<std::uint32_t> expected = NumbersOfAMap(texts, Upward(MANY));
    unsigned int failures = 0;
    for (AllocationRounds rounds; rounds.Next(); ++failures) {
        DistinctTexts distinct(texts);
        std::vector<std::uint32_t> numbers(MANY);
        try {
            const FailingAllocation failing(rounds.Spared());
            distinct.Number(0, MANY, numbers.data());
        } catch (const std::bad_alloc&) {
            distinct.Number(0, MANY, numbers.data());
        }
        ASSERT_EQ(numbers, expected) << rounds.Spared();
    }
    EXPECT_GT(failures, 20U) << "keys, hashes and positions each grow several times";
}

} // namespace
} // namespace MERVO::Tessera
