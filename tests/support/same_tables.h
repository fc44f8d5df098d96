#pragma once

#include <bit>

#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {

testing::AssertionResult IsSameTable(const DataFrame& left, const DataFrame& right);

/// Whether two cells have the same bits; a DateTime counts by its stamp, a table by its error, names and cells.
template <typename T>
bool IsSameCell(const T& left, const T& right)
{
    if constexpr (std::is_same_v<T, double>) {
        return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
    } else if constexpr (std::is_same_v<T, float>) {
        return std::bit_cast<std::uint32_t>(left) == std::bit_cast<std::uint32_t>(right);
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        return static_cast<bool>(IsSameTable(left, right));
    } else {
        return left == right;
    }
}

template <typename T>
bool HaveSameCells(const Cursor& left, const Cursor& right)
{
    const std::vector<T> ours = CellsOf<T>(left);
    const std::vector<T> theirs = CellsOf<T>(right);
    return std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(), IsSameCell<T>);
}

/// Whether two tables have the same error, names, value types, containers and, bit for bit, cells.
inline testing::AssertionResult IsSameTable(const DataFrame& left, const DataFrame& right)
{
    constexpr auto COMPARISONS = ForEachValueType([](auto number) { return &HaveSameCells<ValueTypes::At<number()>>; });
    const Error& error = left.GetError();
    if (error.code != right.GetError().code || error.message != right.GetError().message) {
        return testing::AssertionFailure() << "error " << error.code << ", not " << right.GetError().code;
    }
    if (left.ColumnCount() != right.ColumnCount() || left.RowCount() != right.RowCount()) {
        return testing::AssertionFailure() << left.RowCount() << " by " << left.ColumnCount() << ", not "
                                           << right.RowCount() << " by " << right.ColumnCount();
    }
    for (unsigned int k = 0; k < left.ColumnCount(); ++k) {
        const SeriesPtr& ours = left.GetColumn(k);
        const SeriesPtr& theirs = right.GetColumn(k);
        const MERVO_TESSERA_TYPEID type = ours->GetTypeId();
        if (ours->GetName() != theirs->GetName() || type != theirs->GetTypeId() ||
            ours->GetAttr().containerId != theirs->GetAttr().containerId ||
            !COMPARISONS[static_cast<std::size_t>(type)](ours->GetIterator(), theirs->GetIterator())) {
            return testing::AssertionFailure() << "column " << k << " of " << GetTypeNameById(type) << " differs";
        }
    }
    return testing::AssertionSuccess();
}

} // namespace MERVO::Tessera
