// Columns that are reduced side by side get the bits that each of them gets alone.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/support/random.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

/// Finite numbers, among them such as overflow together; and in some columns NaN, infinities, or nothing else.
double CellOf(std::uint32_t column, Random& random)
{
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    constexpr double INF = std::numeric_limits<double>::infinity();
    const double number = (static_cast<double>(random.Below(2000001)) - 1e6) / 1024;
    switch (column % 7) {
    case 1:
        return random.Below(9) == 0 ? NONE : number;
    case 2:
        return random.Below(40) == 0 ? (random.Below(2) == 0 ? INF : -INF) : number;
    case 3:
        return number * 1e306;
    case 5: // down to the smallest magnitudes, where an operation loses digits
        return std::ldexp(number, -static_cast<int>(random.Below(1090)));
    case 4:
        return random.Below(2) == 0 ? NONE : -NONE;
    case 6:
        return number * 1e100; // the cubes of some are infinite, though their variance is not
    default:
        return number;
    }
}

template <template <ContainerID, typename...> class F, typename... ARGS>
void HoldAgainstEachAlone(const DataFrame& table, ARGS... arguments)
{
    const Func::FunctorFactory<F, Func::UnaryBase, ARGS...> make{arguments...};
    DataFrame together;
    ASSERT_EQ(together.ApplyInplace(make, table), 0);
    for (std::uint32_t k = 0; k < table.ColumnCount(); ++k) {
        DataFrame alone;
        ASSERT_EQ(alone.ApplyInplace(make, table.Slice(1U, {k, k + 1})), 0);
        EXPECT_TRUE(IsSameTable(DataFrame(together.Slice(1U, {k, k + 1})), alone)) << "column " << k;
    }
}

TEST(ColumnsAbreast, GetTheBitsOfEachAlone)
{
    Random random(17);
    for (const std::uint32_t rows : {1U, 2U, 31U, 32U, 33U, 500U}) {
        for (const std::uint32_t count : {2U, 8U, 9U, 13U}) {
            SCOPED_TRACE(testing::Message() << rows << " rows of " << count);
            std::vector<std::vector<double>> columns(count, std::vector<double>(rows));
            for (std::uint32_t k = 0; k < count; ++k) {
                std::generate(columns[k].begin(), columns[k].end(), [&] { return CellOf(k, random); });
            }
            DataFrame table;
            ASSERT_EQ(table.ReadVectorByCol(columns), 0);
            HoldAgainstEachAlone<Func::Sum>(table);
            HoldAgainstEachAlone<Func::Mean>(table);
            HoldAgainstEachAlone<Func::Var>(table, 1U);
            HoldAgainstEachAlone<Func::Std>(table, 0U);
            for (const bool skipNan : {false, true}) {
                for (const bool bias : {false, true}) {
                    HoldAgainstEachAlone<Func::Skew>(table, skipNan, bias);
                    HoldAgainstEachAlone<Func::Kurt>(table, skipNan, bias);
                }
            }
        }
    }
}

// A window's columns are cut to its rows; one that is no array of doubles takes all of them the other way.
TEST(ColumnsAbreast, AreThoseOfTheWindow)
{
    DataFrame table;
    ASSERT_EQ(table.ReadVectorByCol<double>({{1, 2, 3, 4}, {10, 20, 30, 40}}), 0);
    const Func::FunctorFactory<Func::Sum, Func::UnaryBase> sum;
    DataFrame sums;
    ASSERT_EQ(sums.ApplyInplace(sum, table.Slice({1, 3}, {0, 2})), 0);
    EXPECT_EQ(sums.To1DVector<double>(), (std::vector<double>{5, 50}));
    EXPECT_EQ(sums.GetColumnName(), table.GetColumnName());

    DataFrame mixed = table;
    DataFrame whole;
    ASSERT_EQ(whole.ReadVector<std::int32_t>({1, 1, 1, 1}, {4, 1}), 0);
    ASSERT_EQ(mixed.AppendColInplace(whole), 0);
    ASSERT_EQ(sums.ApplyInplace(sum, mixed), 0);
    EXPECT_EQ(sums.To1DVector<double>(), (std::vector<double>{10, 100, 4}));
}

} // namespace
} // namespace MERVO::Tessera
