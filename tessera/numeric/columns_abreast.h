#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

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

/// The columns whose numbers one wide vector holds.
inline constexpr std::size_t RANK = 4;
inline constexpr std::size_t COLUMNS_ABREAST = 3 * RANK;

/// A number for each column.
using Abreast = std::array<double, COLUMNS_ABREAST>;

/// Arrays of doubles of one length. Behind the last one the first stands again, as far as its rank reaches.
struct ColumnsAbreast {
    std::array<const double*, COLUMNS_ABREAST> heads;
    std::size_t count; ///< of columns
    std::uint32_t length;
};

/// Numbers that belong to each column and that its terms are made with.
template <std::size_t COUNT>
using ParametersAbreast = std::array<Abreast, COUNT>;

/**
 * Adds terms of one column's rows to its totals, from the first row to the last.
 * @param terms terms(value, parameters, results) makes a term for each sum, of one value or of a vector of them, with
 *              arrays of the parameters and of the results.
 */
template <std::size_t SUMS, std::size_t COUNT, typename Terms>
[[gnu::always_inline]] inline void AddColumn(std::array<Abreast, SUMS>& totals, std::size_t column,
    std::span<const double> values, const ParametersAbreast<COUNT>& parameters, Terms terms)
{
    double own[COUNT + 1]; // there may be none
    for (std::size_t p = 0; p < COUNT; ++p) {
        own[p] = parameters[p][column];
    }
    for (const double value : values) {
        double results[SUMS];
        terms(value, own, results);
        for (std::size_t s = 0; s < SUMS; ++s) {
            totals[s][column] += results[s];
        }
    }
}

/// Adds the terms of a few rows of one rank of columns, number by number.
struct AddWithin {
    static constexpr std::size_t ROWS = 32; ///< whose terms are made before they are added: they fill vectors

    template <std::size_t SUMS, std::size_t COUNT, typename Terms>
    [[gnu::always_inline]] static void AddRows(std::array<Abreast, SUMS>& totals, const double* const* heads,
        std::size_t rank, std::size_t row, const ParametersAbreast<COUNT>& parameters, Terms terms)
    {
        double made[SUMS][RANK][ROWS];
        for (std::size_t k = 0; k < RANK; ++k) {
            double own[COUNT + 1];
            for (std::size_t p = 0; p < COUNT; ++p) {
                own[p] = parameters[p][rank + k];
            }
            const double* const values = heads[rank + k] + row;
            for (std::size_t i = 0; i < ROWS; ++i) {
                double results[SUMS];
                terms(values[i], own, results);
                for (std::size_t s = 0; s < SUMS; ++s) {
                    made[s][k][i] = results[s];
                }
            }
        }
        for (std::size_t s = 0; s < SUMS; ++s) {
            double sums[RANK]; // in registers
            std::copy_n(&totals[s][rank], RANK, sums);
            for (std::size_t i = 0; i < ROWS; ++i) {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < RANK; ++k) {
                    sums[k] += made[s][k][i];
                }
            }
            std::copy_n(sums, RANK, &totals[s][rank]);
        }
    }
};

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// A number for each column of a rank.
using Lanes [[gnu::vector_size(TESSERA_WIDE_VECTOR_BYTES)]] = double;

/// The same for functions that are compiled for wide vectors: squares of four rows by four columns are turned, so that
/// a vector holds a row of four columns.
struct AddAcross {
    static constexpr std::size_t ROWS = 16; ///< few, so that the processor has the next rank in view

    template <std::size_t SUMS, std::size_t COUNT, typename Terms>
    [[gnu::always_inline]] static void AddRows(std::array<Abreast, SUMS>& totals, const double* const* heads,
        std::size_t rank, std::size_t row, const ParametersAbreast<COUNT>& parameters, Terms terms)
    {
        static_assert(sizeof(Lanes) == RANK * sizeof(double) && ROWS % RANK == 0);
        Lanes own[COUNT + 1];
#pragma GCC unroll 4 // into registers, as the next loop does
        for (std::size_t p = 0; p < COUNT; ++p) {
            std::memcpy(&own[p], &parameters[p][rank], sizeof(Lanes));
        }
        Lanes sums[SUMS];
#pragma GCC unroll 2
        for (std::size_t s = 0; s < SUMS; ++s) {
            std::memcpy(&sums[s], &totals[s][rank], sizeof(Lanes));
        }
#pragma GCC unroll 4
        for (std::size_t i = row; i < row + ROWS; i += RANK) {
            AddSquare(sums, heads + rank, i, own, terms, std::make_index_sequence<SUMS>{});
        }
#pragma GCC unroll 2
        for (std::size_t s = 0; s < SUMS; ++s) {
            std::memcpy(&totals[s][rank], &sums[s], sizeof(Lanes));
        }
    }

private:
    template <typename Terms, std::size_t... S>
    [[gnu::always_inline]] static void AddSquare(Lanes (&sums)[sizeof...(S)], const double* const* heads,
        std::size_t row, const Lanes* parameters, Terms terms, std::index_sequence<S...>)
    {
        Lanes a, b, c, d; // a column each
        std::memcpy(&a, heads[0] + row, sizeof a);
        std::memcpy(&b, heads[1] + row, sizeof b);
        std::memcpy(&c, heads[2] + row, sizeof c);
        std::memcpy(&d, heads[3] + row, sizeof d);
        const Lanes evenFront = __builtin_shufflevector(a, b, 0, 4, 2, 6);
        const Lanes oddFront = __builtin_shufflevector(a, b, 1, 5, 3, 7);
        const Lanes evenBack = __builtin_shufflevector(c, d, 0, 4, 2, 6);
        const Lanes oddBack = __builtin_shufflevector(c, d, 1, 5, 3, 7);
        const Lanes rows[RANK] = {__builtin_shufflevector(evenFront, evenBack, 0, 1, 4, 5),
            __builtin_shufflevector(oddFront, oddBack, 0, 1, 4, 5),
            __builtin_shufflevector(evenFront, evenBack, 2, 3, 6, 7),
            __builtin_shufflevector(oddFront, oddBack, 2, 3, 6, 7)};
#pragma GCC unroll 4
        for (std::size_t i = 0; i < RANK; ++i) {
            Lanes results[sizeof...(S)];
            terms(rows[i], parameters, results);
            ((sums[S] += results[S]), ...);
        }
    }
};
#else
using AddAcross = AddWithin;
#endif

/// Adds up each column's terms from the first row to the last; see AddColumn.
template <typename Adder, std::size_t SUMS, std::size_t COUNT, typename Terms>
[[gnu::always_inline]] inline std::array<Abreast, SUMS> SumsAbreast(
    const ColumnsAbreast& columns, const ParametersAbreast<COUNT>& parameters, Terms terms)
{
    std::array<Abreast, SUMS> totals{};
    const std::size_t inRows = columns.length - columns.length % Adder::ROWS;
    for (std::size_t row = 0; row < inRows; row += Adder::ROWS) {
        for (std::size_t rank = 0; rank < columns.count; rank += RANK) {
            Adder::AddRows(totals, columns.heads.data(), rank, row, parameters, terms);
        }
    }
    for (std::size_t k = 0; k < columns.count; ++k) {
        AddColumn(totals, k, {columns.heads[k] + inRows, columns.length - inRows}, parameters, terms);
    }
    return totals;
}

/// Sums of the values that are not NaN, and numbers of those that are.
struct PresentAbreast {
    Abreast totals;
    Abreast missing;
};

template <typename Adder>
[[gnu::always_inline]] inline PresentAbreast SumsOfPresentAbreast(const ColumnsAbreast& columns)
{
    const auto [totals, missing] =
        SumsAbreast<Adder, 2>(columns, ParametersAbreast<0>{}, [](const auto& value, const auto*, auto* results) {
            using Number = std::remove_cvref_t<decltype(value)>;
            results[0] = value == value ? value : Number{};
            results[1] = value == value ? Number{} : Number{} + 1.0;
        });
    return {totals, missing};
}

/// Parameters by which Divide divides each column's terms: a number of elements, 1 at least, and its reciprocal.
inline ParametersAbreast<2> DivisorsAbreast(const Abreast& counts)
{
    Abreast reciprocals;
    std::transform(counts.begin(), counts.end(), reciprocals.begin(), [](double count) { return 1.0 / count; });
    return {counts, reciprocals};
}

[[gnu::always_inline]] inline void Divide(const double& value, const double* divisor, double& quotient)
{
    quotient = value / divisor[0];
}

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// What CountDivisor::FusedQuotient gives.
[[gnu::always_inline]] inline void Divide(const Lanes& value, const Lanes* divisor, Lanes& quotient)
{
    const Lanes product = value * divisor[1];
    for (std::size_t i = 0; i < RANK; ++i) {
        const double remainder = __builtin_fma(-product[i], divisor[0][i], value[i]);
        quotient[i] = __builtin_fma(remainder, divisor[1][i], product[i]);
    }
}
#endif

/// Watches for values of so small a magnitude that Divide may not get the quotient's bits. Zero is none of them.
class SmallestMagnitude {
public:
    [[gnu::always_inline]] void See(const double&) {} // is divided by division

#ifdef TESSERA_WIDE_VECTOR_BYTES
    [[gnu::always_inline]] void See(const Lanes& value)
    {
        constexpr std::uint64_t MAGNITUDE = ~(std::uint64_t{1} << 63);
        const Halves seen = (Halves)(((Wholes)value & MAGNITUDE) - 1); // zero comes to be the largest of all
        least = seen < least ? seen : least;
    }
    /// Whether a value seen may be below, judged by the upper halves of the numbers' bits.
    bool IsBelow(double bound) const
    {
        const auto limit = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(bound) >> 32);
        return least[1] < limit || least[3] < limit || least[5] < limit || least[7] < limit;
    }

private:
    using Wholes [[gnu::vector_size(TESSERA_WIDE_VECTOR_BYTES)]] = std::uint64_t;
    using Halves [[gnu::vector_size(TESSERA_WIDE_VECTOR_BYTES)]] = std::uint32_t;
    Halves least = ~Halves{};
#else
    bool IsBelow(double) const { return false; }
#endif
};

template <typename Reduce>
TESSERA_WIDE_VECTORS void ReduceWide(const Reduce& reduce, const ColumnsAbreast& columns, Abreast& cells)
{
    cells = reduce.template Reduce<AddAcross>(columns);
}

/**
 * Reduces columns of doubles to a cell each: reduce.Reduce<Adder>(columns), which is always inlined, gives
 * those of up to COLUMNS_ABREAST of them. A cell that would be NaN is left to the functor's run on that column, which
 * knows the one to take.
 * @return false, and nothing is written, unless there are two columns or more, all of them arrays of doubles of one
 *         length, 1 at least, and each result one such cell.
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
    const bool isServed = length != 0 && sources.size() > 1 && sources.size() == results.size() &&
        std::all_of(sources.begin(), sources.end(), [&](const Cursor& source) { return isArray(source, length); }) &&
        std::all_of(results.begin(), results.end(), [&](const Cursor& result) { return isArray(result, 1); });
    if (!isServed) {
        return false;
    }
    for (std::size_t first = 0; first < sources.size(); first += COLUMNS_ABREAST) {
        const std::size_t count = std::min(COLUMNS_ABREAST, sources.size() - first);
        ColumnsAbreast columns{{}, count, length};
        columns.heads.fill(CursorAs<CONTAINER_ARRAY, double>(sources[first]).mHead);
        for (std::size_t k = 1; k < count; ++k) {
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
