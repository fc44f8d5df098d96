#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "tessera/functors/functor_base.h"
#include "tessera/platform/multiversion.h"

/**
 * Sums over several columns at a time.
 *
 * Within a column each addition waits for the one before, as their order is laid down. Columns don't wait for each
 * other: while one addition is under way, the processor makes those of the other columns, and with wide vectors one
 * instruction adds for four of them.
 */
namespace MERVO::Tessera::Func {

inline constexpr std::size_t COLUMNS_ABREAST = 8;
/// The terms of so many rows are computed together: enough for full width, few enough for the first-level cache.
inline constexpr std::size_t ROWS_ABREAST = 32;

/// A number for each column.
using Abreast = std::array<double, COLUMNS_ABREAST>;

/// Arrays of doubles of one length.
struct ColumnsAbreast {
    std::array<const double*, COLUMNS_ABREAST> heads;
    std::size_t count; ///< of columns
    std::uint32_t length;
};

/// What is added to the totals of a few rows of each column; zeros in columns that are not there.
using TermsAbreast = std::array<std::array<double, ROWS_ABREAST>, COLUMNS_ABREAST>;

/// Adds the terms row by row.
struct AddWithin {
    static constexpr bool HAS_FUSED = false; ///< whether the surrounding function has fused multiply-adds

    [[gnu::always_inline]] static void Add(Abreast& totals, const TermsAbreast& terms)
    {
        Abreast sums = totals;
        for (std::size_t i = 0; i < ROWS_ABREAST; ++i) {
#pragma GCC unroll 8 // each total in a register
            for (std::size_t k = 0; k < COLUMNS_ABREAST; ++k) {
                sums[k] += terms[k][i];
            }
        }
        totals = sums;
    }
};

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// The same for functions that are compiled for wide vectors: squares of four rows by four columns are turned, so that
/// a vector holds the terms of four columns.
struct AddAcross {
    static constexpr bool HAS_FUSED = true;
    static constexpr std::size_t WIDTH = TESSERA_WIDE_VECTOR_BYTES / sizeof(double);
    using Lanes [[gnu::vector_size(TESSERA_WIDE_VECTOR_BYTES)]] = double;

    [[gnu::always_inline]] static void Add(Abreast& totals, const TermsAbreast& terms)
    {
        static_assert(WIDTH == 4 && COLUMNS_ABREAST == 2 * WIDTH);
        Lanes front, back; // not an array, which would stay in memory
        std::memcpy(&front, &totals[0], sizeof front);
        std::memcpy(&back, &totals[WIDTH], sizeof back);
        for (std::size_t i = 0; i < ROWS_ABREAST; i += WIDTH) {
            AddSquare(front, &terms[0], i);
            AddSquare(back, &terms[WIDTH], i);
        }
        std::memcpy(&totals[0], &front, sizeof front);
        std::memcpy(&totals[WIDTH], &back, sizeof back);
    }

private:
    [[gnu::always_inline]] static void AddSquare(
        Lanes& sums, const std::array<double, ROWS_ABREAST>* columns, std::size_t first)
    {
        Lanes a, b, c, d; // a column each
        std::memcpy(&a, &columns[0][first], sizeof a);
        std::memcpy(&b, &columns[1][first], sizeof b);
        std::memcpy(&c, &columns[2][first], sizeof c);
        std::memcpy(&d, &columns[3][first], sizeof d);
        const Lanes evenFront = __builtin_shufflevector(a, b, 0, 4, 2, 6);
        const Lanes oddFront = __builtin_shufflevector(a, b, 1, 5, 3, 7);
        const Lanes evenBack = __builtin_shufflevector(c, d, 0, 4, 2, 6);
        const Lanes oddBack = __builtin_shufflevector(c, d, 1, 5, 3, 7);
        sums += __builtin_shufflevector(evenFront, evenBack, 0, 1, 4, 5);
        sums += __builtin_shufflevector(oddFront, oddBack, 0, 1, 4, 5);
        sums += __builtin_shufflevector(evenFront, evenBack, 2, 3, 6, 7);
        sums += __builtin_shufflevector(oddFront, oddBack, 2, 3, 6, 7);
    }
};
#else
using AddAcross = AddWithin;
#endif

/**
 * Adds terms of each column k to its totals, from the first row to the last.
 * @param prepare prepare(k, values, count, terms) makes the terms of a few values for each sum s into terms[s][k];
 *                count is a constant where it can be, for the sake of full width.
 */
template <typename Adder, std::size_t SUMS, typename Prepare>
[[gnu::always_inline]] inline void AddAbreast(
    std::array<Abreast, SUMS>& totals, const ColumnsAbreast& columns, Prepare prepare)
{
    std::array<TermsAbreast, SUMS> terms{};
    std::uint32_t first = 0;
    for (; columns.length - first >= ROWS_ABREAST; first += ROWS_ABREAST) {
        for (std::size_t k = 0; k < columns.count; ++k) {
            prepare(k, columns.heads[k] + first, std::integral_constant<std::size_t, ROWS_ABREAST>{}, terms);
        }
        for (std::size_t s = 0; s < SUMS; ++s) {
            Adder::Add(totals[s], terms[s]);
        }
    }
    const std::size_t rest = columns.length - first;
    for (std::size_t k = 0; k < columns.count; ++k) {
        prepare(k, columns.heads[k] + first, rest, terms);
        for (std::size_t s = 0; s < SUMS; ++s) {
            for (std::size_t i = 0; i < rest; ++i) {
                totals[s][k] += terms[s][k][i];
            }
        }
    }
}

/// The same with term(k, value) for each value.
template <typename Adder, typename Term>
[[gnu::always_inline]] inline Abreast SumsOfTermsAbreast(const ColumnsAbreast& columns, Term term)
{
    std::array<Abreast, 1> totals{};
    AddAbreast<Adder>(totals, columns, [term](std::size_t k, const double* values, auto count, auto& terms) {
        for (std::size_t i = 0; i < count; ++i) {
            terms[0][k][i] = term(k, values[i]);
        }
    });
    return totals[0];
}

/// Sums of the values that are not NaN, and numbers of those that are.
struct PresentAbreast {
    Abreast totals;
    std::array<std::uint32_t, COLUMNS_ABREAST> missing;
};

template <typename Adder>
[[gnu::always_inline]] inline PresentAbreast SumsOfPresentAbreast(const ColumnsAbreast& columns)
{
    std::array<Abreast, 1> totals{};
    std::array<std::uint32_t, COLUMNS_ABREAST> missing{};
    AddAbreast<Adder>(totals, columns, [&missing](std::size_t k, const double* values, auto count, auto& terms) {
        std::int64_t missingHere = 0; // counted in a loop of its own, both are vectorised
        for (std::size_t i = 0; i < count; ++i) {
            missingHere += values[i] != values[i] ? 1 : 0;
        }
        for (std::size_t i = 0; i < count; ++i) {
            terms[0][k][i] = values[i] == values[i] ? values[i] : 0.0;
        }
        missing[k] += static_cast<std::uint32_t>(missingHere);
    });
    return {totals[0], missing};
}

template <typename Reduce>
TESSERA_WIDE_VECTORS void ReduceWide(const Reduce& reduce, const ColumnsAbreast& columns, Abreast& cells)
{
    cells = reduce.template Reduce<AddAcross>(columns);
}

/**
 * Reduces columns of doubles to a cell each: reduce.Reduce<Adder>(columns), which is always inlined, gives
 * those of up to COLUMNS_ABREAST of them. A cell that would be NaN is left to the functor's run on that column, which
 * knows the one to take.
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
    // A few columns left over would take as much time for their additions as many do: all go in equal parts.
    const std::size_t parts = (sources.size() + COLUMNS_ABREAST - 1) / COLUMNS_ABREAST;
    const std::size_t most = (sources.size() + parts - 1) / parts;
    for (std::size_t first = 0; first < sources.size(); first += most) {
        const std::size_t count = std::min(most, sources.size() - first);
        ColumnsAbreast columns{{}, count, length};
        for (std::size_t k = 0; k < count; ++k) {
            columns.heads[k] = CursorAs<CONTAINER_ARRAY, double>(sources[first + k]).mHead;
        }
        Abreast cells;
        if (HasWideVectors()) {
            ReduceWide(reduce, columns, cells);
        } else {
            cells = reduce.template Reduce<AddWithin>(columns);
        }
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
