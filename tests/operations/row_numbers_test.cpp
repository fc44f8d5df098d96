// Numbers of rows whose keys are texts, held against a map.

#include "tessera/operations/row_numbers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <numeric>

#include "tests/support/random.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using Texts = std::vector<std::string>;
using Numbers = std::vector<std::uint32_t>;

constexpr std::uint32_t ROWS = 4000;

/// What a map numbers, in the order of some rows.
Numbers Expected(const std::vector<Texts>& columns, const Numbers& rows)
{
    std::map<Texts, std::uint32_t> model;
    Numbers numbers;
    for (const std::uint32_t row : rows) {
        Texts key;
        for (const Texts& column : columns) {
            key.push_back(column[row]);
        }
        numbers.push_back(model.try_emplace(key, static_cast<std::uint32_t>(model.size())).first->second);
    }
    return numbers;
}

Texts Labels(const char* format, std::uint32_t different, std::uint64_t seed)
{
    Random random(seed);
    Texts texts;
    for (std::uint32_t i = 0; i < ROWS; ++i) {
        char text[32] = {};
        std::snprintf(text, sizeof text, format, random.Below(different));
        texts.emplace_back(text);
    }
    return texts;
}

Texts With(Texts texts, std::uint32_t row, const std::string& text)
{
    texts[row] = text;
    return texts;
}

TEST(RowNumbers, OfTextsAreThoseOfAMap)
{
    const Texts many = Labels("id%06u", 3000, 1);
    const Texts few = Labels("%03u", 100, 2);
    const Texts others = Labels("a label %08u", 1200, 3);
    struct Case {
        std::vector<Texts> columns;
        bool areHashed;
    };
    const Case cases[] = {
        {{many}, false},
        {{others}, false},
        {{few}, true},
        {{With(many, ROWS - 1, "id00001")}, true},  // another size, where nearly all have been looked at
        {{With(many, ROWS - 1, "xy999999")}, true}, // too many numbers
        {{With(others, 600, "")}, true},
        {{many, others}, false},
        {{others, few, many}, true},
        {{few, few}, true},
        {{Labels("%u and a text of more than two words", 2000, 4)}, true},
        {{Texts(ROWS, "")}, true},
    };
    Numbers shuffled(ROWS);
    std::iota(shuffled.begin(), shuffled.end(), 0U);
    const Numbers upward = shuffled;
    const Numbers downward(upward.rbegin(), upward.rend());
    Random random(5);
    for (std::uint32_t& row : shuffled) {
        std::swap(row, shuffled[random.Below(ROWS)]);
    }
    for (const auto& [columns, areHashed] : cases) {
        std::vector<SeriesPtr> series;
        std::vector<Cursor> cursors;
        for (const Texts& texts : columns) {
            series.push_back(Column<std::string>("", texts));
            cursors.push_back(series.back()->GetIterator());
        }
        RowNumbers up(cursors, RowNumbers::Nan::NONE_EQUAL);
        RowNumbers down(cursors, RowNumbers::Nan::NONE_EQUAL);
        RowNumbers anywhere(cursors, RowNumbers::Nan::NONE_EQUAL);
        Numbers upNumbers(ROWS);
        Numbers downNumbers(ROWS);
        Numbers anyNumbers(ROWS);
        for (std::uint32_t first = 0; first < ROWS; first += RowNumbers::BLOCK) {
            const std::uint32_t count = std::min(RowNumbers::BLOCK, ROWS - first);
            up.NumberUp(first, count, &upNumbers[first]);
            down.NumberDown(ROWS - first - count, count, &downNumbers[first]);
            anywhere.Number({&shuffled[first], count}, &anyNumbers[first]);
        }
        const std::string& number = columns.front().front() + " in " + std::to_string(columns.size());
        EXPECT_EQ(up.NumbersTexts(), areHashed) << "case " << number;
        ASSERT_EQ(upNumbers, Expected(columns, upward)) << "case " << number;
        ASSERT_EQ(downNumbers, Expected(columns, downward)) << "case " << number;
        ASSERT_EQ(anyNumbers, Expected(columns, shuffled)) << "case " << number;
    }
}

} // namespace
} // namespace MERVO::Tessera
