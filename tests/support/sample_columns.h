#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera {

template <typename Tuple>
struct TestTypesOf;
template <typename... T>
struct TestTypesOf<std::tuple<T...>> {
    using Type = testing::Types<T...>;
};
/// The 14 value types, for typed test suites.
using AllValueTypes = TestTypesOf<ValueTypes::Tuple>::Type;

inline constexpr ContainerID BOTH_CONTAINERS[] = {CONTAINER_ARRAY, CONTAINER_LIST};

/// A column of the given cells.
template <typename T>
SeriesPtr Column(const std::string& name, const std::vector<T>& cells, ContainerID container = CONTAINER_ARRAY)
{
    SeriesPtr column = BuildSeries({static_cast<std::uint32_t>(cells.size()), container, TYPE_ID_OF<T>}, name);
    const Cursor cursor = column->GetIterator();
    for (std::uint32_t i = 0; i < cells.size(); ++i) {
        EXPECT_TRUE(SetValueToIterator<T>(cursor, cells[i], i));
    }
    return column;
}

/// The cells from a cursor's place to its end.
template <typename T>
std::vector<T> CellsOf(const Cursor& cursor)
{
    std::vector<T> cells;
    for (std::uint32_t i = 0; cursor != nullptr && i < cursor->Length(); ++i) {
        cells.push_back(GetValueFromIterator<T>(cursor, i));
    }
    return cells;
}

template <typename... C>
DataFrame TableOf(C... columns)
{
    DataFrame::Columns all;
    (all.push_back(std::move(columns)), ...);
    return DataFrame(std::move(all));
}

/// The i-th of a series of values that differ from their neighbours, reach both signs, and leave short strings behind.
template <typename T>
T SampleValue(std::uint32_t i)
{
    if constexpr (std::is_same_v<T, bool>) {
        return i * i % 7 < 3;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(i) * T(0.75) - T(20);
    } else if constexpr (std::is_arithmetic_v<T>) {
        return static_cast<T>(i * 2654435761U + 11U);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return std::string(i % 3 * 20, 's') + std::to_string(i);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return DateTime(static_cast<std::int32_t>(i * 86399U - 1000000U)); // a long of 32 bits would overflow
    } else {
        DataFrame table;
        EXPECT_EQ(table.template ReadVector<std::int32_t>({static_cast<std::int32_t>(i), -5}, {2, 1}), 0);
        return table;
    }
}

template <typename T>
std::vector<T> SampleValues(std::uint32_t count)
{
    std::vector<T> values;
    for (std::uint32_t i = 0; i < count; ++i) {
        values.push_back(SampleValue<T>(i));
    }
    return values;
}

template <typename T>
bool IsSame(const T& left, const T& right)
{
    if constexpr (std::is_same_v<T, DateTime>) {
        return left.TimeStamp() == right.TimeStamp();
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        return left.GetError().code == right.GetError().code && left.ColumnCount() == right.ColumnCount() &&
            (left.ColumnCount() == 0 ||
                left.template To1DVector<std::int32_t>() == right.template To1DVector<std::int32_t>());
    } else {
        return left == right;
    }
}

template <std::floating_point T>
using BitsOf = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;

/// As IsSame, but numbers must have the same bits: NaN is the same as itself, and 0 another number than -0.
template <typename T>
bool HasSameBits(const T& left, const T& right)
{
    if constexpr (std::is_floating_point_v<T>) {
        return std::bit_cast<BitsOf<T>>(left) == std::bit_cast<BitsOf<T>>(right);
    } else {
        return IsSame<T>(left, right);
    }
}

template <typename T>
testing::AssertionResult AreSame(const std::vector<T>& left, const std::vector<T>& right)
{
    if (left.size() != right.size()) {
        return testing::AssertionFailure() << left.size() << " cells, not " << right.size();
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (!IsSame<T>(left[i], right[i])) {
            return testing::AssertionFailure() << "cell " << i << " differs";
        }
    }
    return testing::AssertionSuccess();
}

} // namespace MERVO::Tessera
