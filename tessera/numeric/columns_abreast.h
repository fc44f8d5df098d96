#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "tessera/functors/functor_base.h"
#include "tessera/platform/multiversion.h"

/**
 * Sums over several columns at a time.
 *
 * Within a column each addition waits for the one before, as their order is laid down. Columns don't wait for each
 * other: while one addition is under way, the processor makes those of the other columns.
 */
namespace MERVO::Tessera::Func {

inline constexpr std::size_t COLUMNS_ABREAST = 8;
/// The terms of so many rows are computed together: enough for full width, few enough for the first-level cache.
inline constexpr std::size_t ROWS_ABREAST = 32;

/// A number for each column.
using Abreast = std::array<double, COLUMNS_ABREAST>;

/// Arrays of doubles of one length. Places that are left over repeat the first column, which costs hardly any time.
struct ColumnsAbreast {
    std::array<const double*, COLUMNS_ABREAST> heads;
    std::uint32_t length;
};

/// Adds terms of each column k to total k, from the first to the last. prepare(k, values, count, terms) makes the terms
/// of a few values; count is a constant where it can be, for the sake of full width.
template <typename Prepare>
[[gnu::always_inline]] inline void AddAbreast(Abreast& totals, const ColumnsAbreast& columns, Prepare prepare)
{
    double terms[COLUMNS_ABREAST][ROWS_ABREAST];
    Abreast sums = totals;
    std::uint32_t first = 0;
    for (; columns.length - first >= ROWS_ABREAST; first += ROWS_ABREAST) {
        for (std::size_t k = 0; k < COLUMNS_ABREAST; ++k) {
            prepare(k, columns.heads[k] + first, std::integral_constant<std::size_t, ROWS_ABREAST>{}, terms[k]);
        }
        for (std::size_t i = 0; i < ROWS_ABREAST; ++i) {
#pragma GCC unroll 8 // each total in a register
            for (std::size_t k = 0; k < COLUMNS_ABREAST; ++k) {
                sums[k] += terms[k][i];
            }
        }
    }
    const std::size_t rest = columns.length - first;
    for (std::size_t k = 0; k < COLUMNS_ABREAST; ++k) {
        prepare(k, columns.heads[k] + first, rest, terms[k]);
        for (std::size_t i = 0; i < rest; ++i) {
            sums[k] += terms[k][i];
        }
    }
    totals = sums;
}

/// The same with term(k, value) for each value.
template <typename Term>
[[gnu::always_inline]] inline void AddTermsAbreast(Abreast& totals, const ColumnsAbreast& columns, Term term)
{
    AddAbreast(totals, columns, [term](std::size_t k, const double* values, auto count, double* terms) {
        for (std::size_t i = 0; i < count; ++i) {
            terms[i] = term(k, values[i]);
        }
    });
}

/// Adds up the values that are not NaN, and counts the others.
[[gnu::always_inline]] inline void AddPresentAbreast(
    Abreast& totals, std::array<std::uint32_t, COLUMNS_ABREAST>& missing, const ColumnsAbreast& columns)
{
    AddAbreast(totals, columns, [&missing](std::size_t k, const double* values, auto count, double* terms) {
        std::int64_t missingHere = 0; // counted in a loop of its own, both are vectorised
        for (std::size_t i = 0; i < count; ++i) {
            missingHere += values[i] != values[i] ? 1 : 0;
        }
        for (std::size_t i = 0; i < count; ++i) {
            terms[i] = values[i] == values[i] ? values[i] : 0.0;
        }
        missing[k] += static_cast<std::uint32_t>(missingHere);
    });
}

template <typename Reduce>
TESSERA_WIDE_VECTORS void ReduceWide(const Reduce& reduce, const ColumnsAbreast& columns, Abreast& cells)
{
    reduce(columns, cells);
}

/**
 * Reduces columns of doubles to a cell each: reduce(columns, cells), which is always inlined, serves up to
 * COLUMNS_ABREAST of them at a time. A cell that would be NaN is left to the functor's run on that column, which knows
 * the one to take.
 * @return false, and nothing is written, unless all columns are arrays of doubles of one length, 1 at least, and each
 *         result one such cell.
 */
template <typename Reduce>
bool ReduceAbreast(
    const UnaryBase& functor, std::span<const Cursor> sources, std::span<const Cursor> results, Reduce reduce)
{
    const auto isArray = [](const Cursor& column, std::uint32_t length) {
        return column != nullptr && column->IsMemoryContiguous() && column->GetAttr().typeId == TESSERA_DOUBLE &&
            column->Length() == length;
    };
    const std::uint32_t length = sources.empty() || sources.front() == nullptr ? 0 : sources.front()->Length();
    const bool isServed = length != 0 && sources.size() == results.size() &&
        std::all_of(sources.begin(), sources.end(), [&](const Cursor& source) { return isArray(source, length); }) &&
        std::all_of(results.begin(), results.end(), [&](const Cursor& result) { return isArray(result, 1); });
    if (!isServed) {
        return false;
    }
    for (std::size_t first = 0; first < sources.size(); first += COLUMNS_ABREAST) {
        const std::size_t count = std::min(COLUMNS_ABREAST, sources.size() - first);
        ColumnsAbreast columns{{}, length};
        for (std::size_t k = 0; k < COLUMNS_ABREAST; ++k) {
            const Cursor& source = sources[first + (k < count ? k : 0)];
            columns.heads[k] = CursorAs<CONTAINER_ARRAY, double>(source).mHead;
        }
        Abreast cells;
        HasWideVectors() ? ReduceWide(reduce, columns, cells) : reduce(columns, cells);
        for (std::size_t k = 0; k < count; ++k) {
            if (cells[k] == cells[k]) {
                *CursorAs<CONTAINER_ARRAY, double>(results[first + k]).mHead = cells[k];
            } else {
                functor.ProcessSeries(sources[first + k], results[first + k], true);
            }
        }
    }
    return true;
}

} // namespace MERVO::Tessera::Func
