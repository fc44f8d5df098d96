#pragma once

#include <cstdint>
#include <span>

#include "tessera/functors/functor_base.h"
#include "tessera/numeric/plain_nan.h"
#include "tessera/numeric/real_runs.h"

/// Sums of groups of rows that lie anywhere in a column: each grows in the order of its rows, as if they were a column.
namespace MERVO::Tessera::Func {

/// Whether a column is an array of numbers or bools, and each group has a cell of that type in an array.
inline bool HasCells(const Cursor& src, const RowGroups& groups, const Cursor& dst, MERVO_TESSERA_TYPEID type)
{
    return src->IsMemoryContiguous() && src->GetAttr().typeId <= TESSERA_DOUBLE && dst->IsMemoryContiguous() &&
        dst->Length() == groups.Count() && dst->GetAttr().typeId == type;
}

/// Calls visit(value, group) for each row of a column of numbers or bools.
template <typename Real, typename Visit>
void ForEachInGroups(const Cursor& column, const RowGroups& groups, Visit visit)
{
    constexpr std::uint32_t BLOCK = 2048;
    const std::uint32_t* group = groups.groupOfRow;
    if constexpr (std::is_same_v<Real, double>) {
        if (column->GetAttr().typeId == TESSERA_INT32) { // the most frequent ones, without a detour
            const auto& cells = CursorAs<CONTAINER_ARRAY, std::int32_t>(column);
            for (const std::int32_t* cell = cells.mHead; cell != cells.mTail; ++cell) {
                visit(static_cast<Real>(*cell), *group++);
            }
            return;
        }
    }
    RealRuns<Real> runs(column);
    for (auto run = runs.Next(BLOCK); !run.empty(); run = runs.Next(BLOCK)) {
        for (const Real value : run) {
            visit(value, *group++);
        }
    }
}

/// Adds up the rows of each group. The totals are zeros.
template <typename Real>
void AddGroups(const Cursor& column, const RowGroups& groups, Real* totals)
{
    ForEachInGroups<Real>(column, groups, [totals](Real value, std::uint32_t group) { AddTerm(totals[group], value); });
}

} // namespace MERVO::Tessera::Func
