#include "tessera/operations/complete_rows.h"

#include "tessera/platform/multiversion.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <algorithm>
#include <array>
#include <bit>
#include <immintrin.h>
#include <vector>

#include "tessera/core/bit_words.h"
#include "tessera/core/memory_room.h"
#include "tessera/core/raw_numbers.h"
#include "tessera/functors/cell_place.h"
#include "tessera/functors/number_compression.h"
#include "tessera/platform/streaming_store.h"
#endif

namespace MERVO::Tessera {

#ifdef TESSERA_WIDE_VECTOR_BYTES
namespace {

using BitWords::Word;
using BitWords::WORD_BITS;

constexpr std::uint32_t FEWEST_ROWS = 1U << 16; ///< of a table that is too large for the nearer caches
constexpr std::uint32_t BLOCK = 4096;           ///< rows; of some ten columns, they are still in these when copied
constexpr std::uint32_t SAMPLES = 32;
constexpr std::uint32_t SAMPLE = 512; ///< rows

TESSERA_WIDE_VECTORS std::uint32_t NanBits(const double* cells)
{
    const __m256d vector = _mm256_loadu_pd(cells);
    return static_cast<std::uint32_t>(_mm256_movemask_pd(_mm256_cmp_pd(vector, vector, _CMP_UNORD_Q)));
}

TESSERA_WIDE_VECTORS std::uint32_t NanBits(const float* cells)
{
    const __m256 vector = _mm256_loadu_ps(cells);
    return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_cmp_ps(vector, vector, _CMP_UNORD_Q)));
}

/// Sets the bits of the rows in which a column is NaN, of 64 rows. Columns side by side: so many streams are what the
/// processor asks ahead for.
template <typename Real>
TESSERA_WIDE_VECTORS void MarkNans(std::span<const Real* const> columns, std::uint32_t first, Word& nans)
{
    constexpr std::uint32_t CELLS = TESSERA_WIDE_VECTOR_BYTES / sizeof(Real);
    for (const Real* const column : columns) {
        Word bits = 0;
        for (std::uint32_t row = 0; row < WORD_BITS; row += CELLS) {
            bits |= Word{NanBits(column + first + row)} << row;
        }
        nans |= bits;
    }
}

/// Tells of whole words of rows which are complete.
class Completeness {
public:
    explicit Completeness(std::span<const NanSource> sources)
    {
        for (const NanSource& source : sources) {
            if (source.Doubles() != nullptr) {
                doubles.push_back(source.Doubles());
            } else if (source.Floats() != nullptr) {
                floats.push_back(source.Floats());
            }
        }
    }

    /// Chooses the complete ones of adjacent rows.
    Func::RowChoice Choose(std::uint32_t first, std::uint32_t count)
    {
        const std::uint32_t words = (count + WORD_BITS - 1) / WORD_BITS;
        for (std::uint32_t word = 0; word < words; ++word) {
            const std::uint32_t row = word * WORD_BITS;
            bits[word] = count - row >= WORD_BITS ? ~NansOf(first + row) : LastOf(first + row, count - row);
        }
        return {first, count, {bits.data(), words}};
    }

private:
    Word NansOf(std::uint32_t first) const
    {
        Word nans = 0;
        MarkNans<double>(doubles, first, nans);
        MarkNans<float>(floats, first, nans);
        return nans;
    }
    /// The same of fewer rows than a word has.
    Word LastOf(std::uint32_t first, std::uint32_t count) const
    {
        Word complete = 0;
        for (std::uint32_t row = 0; row < count; ++row) {
            const auto isNan = [place = first + row](const auto* column) { return column[place] != column[place]; };
            const bool isComplete = std::none_of(doubles.begin(), doubles.end(), isNan) &&
                std::none_of(floats.begin(), floats.end(), isNan);
            complete |= Word{isComplete} << row;
        }
        return complete;
    }

    std::vector<const double*> doubles;
    std::vector<const float*> floats;
    std::array<Word, BLOCK / WORD_BITS> bits;
};

TESSERA_WIDE_VECTORS std::uint32_t CountOf(const Func::RowChoice& rows)
{
    int count = 0;
    for (const Word word : rows.bits) {
        count += std::popcount(word);
    }
    return static_cast<std::uint32_t>(count);
}

/// How many rows are likely to be complete, and some more; no more than there are.
std::uint32_t LikelyCount(Completeness& completeness, std::uint32_t rowCount)
{
    std::uint64_t found = 0;
    for (std::uint32_t i = 0; i < SAMPLES; ++i) {
        const auto last = std::uint64_t{rowCount} - SAMPLE;
        found += CountOf(completeness.Choose(static_cast<std::uint32_t>(last * i / (SAMPLES - 1)), SAMPLE));
    }
    const std::uint64_t likely = std::uint64_t{rowCount} * found / (SAMPLES * SAMPLE);
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(rowCount, likely + likely / 50 + SAMPLE));
}

std::size_t SizeOfCell(const Cursor& column) { return static_cast<std::size_t>(CellSizeOf(column->GetAttr().typeId)); }

/// A column of the result in the making.
struct CompleteColumn {
    CompleteColumn(const Cursor& source, std::uint32_t room)
        : numbers(MakeBlock<std::byte>(room * SizeOfCell(source))),
          compression(SizeOfCell(source), static_cast<const std::byte*>(Func::CellPlace(source).Cell()), numbers.get(),
              room >= STREAMED_FROM / SizeOfCell(source))
    {
    }

    Block<std::byte> numbers;
    Func::NumberCompression compression;
};

bool IsServed(const Cursor& column)
{
    return column != nullptr && column->IsMemoryContiguous() && Func::CanCompress(SizeOfCell(column));
}

/// All columns of a table; none where one of them is not served.
std::vector<Cursor> ServedColumns(const DataFrameRef& table)
{
    std::vector<Cursor> columns;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        columns.push_back(table.GetSlicedIterator(table.GetColumn(k)));
        if (!IsServed(columns.back())) {
            return {};
        }
    }
    return columns;
}

} // namespace

std::optional<DataFrame> CompleteRows(const DataFrameRef& table, std::span<const NanSource> sources)
{
    const std::uint32_t rowCount = table.RowCount();
    const std::vector<Cursor> served = rowCount < FEWEST_ROWS ? std::vector<Cursor>() : ServedColumns(table);
    if (served.empty()) {
        return std::nullopt;
    }
    Completeness completeness(sources);
    const std::uint32_t room = LikelyCount(completeness, rowCount);
    std::vector<CompleteColumn> columns;
    for (const Cursor& source : served) {
        columns.emplace_back(source, room);
        if (columns.back().numbers == nullptr) {
            return std::nullopt;
        }
    }
    std::uint32_t found = 0;
    for (std::uint32_t first = 0; first < rowCount;) {
        const Func::RowChoice rows = completeness.Choose(first, std::min(BLOCK, rowCount - first));
        found += CountOf(rows);
        if (found > room) {
            return std::nullopt;
        }
        for (CompleteColumn& column : columns) {
            column.compression.Append(rows);
        }
        first += rows.count;
    }
    if (found == 0) {
        return std::nullopt;
    }
    DataFrame::Columns finished;
    for (CompleteColumn& column : columns) {
        const SeriesPtr& source = table.GetColumn(static_cast<unsigned int>(finished.size()));
        column.compression.Finish();
        finished.push_back(AdoptNumbers(source->GetTypeId(), found, std::move(column.numbers), source->GetName()));
        if (finished.back() == nullptr) {
            return std::nullopt;
        }
    }
    return DataFrame(std::move(finished));
}
#else
std::optional<DataFrame> CompleteRows(const DataFrameRef&, std::span<const NanSource>) { return std::nullopt; }
#endif

} // namespace MERVO::Tessera
