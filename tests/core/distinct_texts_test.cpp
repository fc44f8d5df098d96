#include "tessera/core/distinct_texts.h"

#include <map>
#include <span>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

#include "tests/support/failing_allocation.h"
#include "tests/support/random_texts.h"

namespace MERVO::Tessera {
namespace {

template <typename Text>
std::vector<std::uint32_t> NumbersOf(DistinctTexts& distinct, const std::vector<Text>& texts)
{
    std::vector<std::uint32_t> numbers(texts.size());
    distinct.Number(std::span(texts), numbers.data());
    return numbers;
}

TEST(DistinctTexts, HaveTheNumbersOfAMap)
{
    const std::vector<std::string> texts = RandomTexts(20000);
    std::map<std::string, std::uint32_t> model;
    std::vector<std::uint32_t> expected;
    for (const std::string& text : texts) {
        expected.push_back(model.try_emplace(text, static_cast<std::uint32_t>(model.size())).first->second);
    }
    DistinctTexts distinct; // so many that the table grows from few slots to more than are numbered one by one
    ASSERT_GT(model.size(), 2000U);
    EXPECT_EQ(NumbersOf(distinct, texts), expected);
    const std::vector<std::string_view> views(texts.begin(), texts.end());
    EXPECT_EQ(NumbersOf(distinct, views), expected) << "all of them known by now";
    EXPECT_EQ(distinct.Count(), model.size());
}

TEST(DistinctTexts, TellLongTextsOfOneHashApart)
{
    std::unordered_map<std::uint32_t, std::string> hashed;
    std::vector<std::string> pair;
    for (std::uint32_t i = 0; pair.empty() && i < 1000000; ++i) {
        const std::string text = "a text of any kind, number " + std::to_string(i);
        const auto [place, isNew] = hashed.try_emplace(HashOf(std::string_view(text)), text);
        if (!isNew && place->second.size() == text.size()) {
            pair = {place->second, text};
        }
    }
    ASSERT_EQ(pair.size(), 2U);
    DistinctTexts distinct;
    EXPECT_EQ(NumbersOf(distinct, pair), (std::vector<std::uint32_t>{0, 1})) << pair[0] << " and " << pair[1];
}

TEST(DistinctTexts, StandWhereMemoryIsShort)
{
    const std::vector<std::string> texts = RandomTexts(100);
    DistinctTexts complete;
    const std::vector<std::uint32_t> expected = NumbersOf(complete, texts);
    DistinctTexts distinct;
    std::uint32_t number = 0;
    EXPECT_THROW(
        {
            const FailingAllocation failing(0);
            for (const std::string_view text : texts) {
                distinct.Number(std::span(&text, 1), &number);
            }
        },
        std::bad_alloc);
    EXPECT_EQ(NumbersOf(distinct, texts), expected);
}

} // namespace
} // namespace MERVO::Tessera
