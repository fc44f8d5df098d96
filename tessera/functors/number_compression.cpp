#include "tessera/functors/number_compression.h"

#include "tessera/platform/streaming_store.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <algorithm>
#include <bit>
#include <cstring>
#include <immintrin.h>
#endif

namespace MERVO::Tessera::Func {

#ifdef TESSERA_WIDE_VECTOR_BYTES
namespace {

using BitWords::Word;
using BitWords::WORD_BITS;

constexpr std::size_t VECTOR = TESSERA_WIDE_VECTOR_BYTES;
constexpr std::size_t PARTS = VECTOR / sizeof(std::uint32_t); ///< of a vector, that can be moved about

/// For each choice among the cells of a vector, the order of its parts that brings the chosen ones to the front.
template <std::size_t CELLS>
constexpr auto MakeOrders()
{
    constexpr std::size_t CELL_PARTS = PARTS / CELLS;
    std::array<std::array<std::uint8_t, PARTS>, 1U << CELLS> orders{};
    for (std::size_t choice = 0; choice < orders.size(); ++choice) {
        std::size_t filled = 0;
        for (std::size_t part = 0; part < PARTS; ++part) {
            if ((choice >> (part / CELL_PARTS) & 1U) != 0) {
                orders[choice][filled++] = static_cast<std::uint8_t>(part);
            }
        }
    }
    return orders;
}

template <std::size_t CELLS>
constexpr auto ORDERS = MakeOrders<CELLS>();

/// Copies the chosen ones of 64 cells to a word. Writes up to a vector's length behind what it returns.
template <std::size_t CELLS>
TESSERA_WIDE_VECTORS std::byte* CompressWords(std::span<const Word> words, const std::byte* from, std::byte* to)
{
    constexpr std::size_t CELL_SIZE = VECTOR / CELLS;
    for (Word word : words) {
        for (std::uint32_t bit = 0; bit < WORD_BITS; bit += CELLS) {
            const auto choice = static_cast<std::size_t>(word % (1U << CELLS));
            word >>= CELLS;
            const __m128i order = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(ORDERS<CELLS>[choice].data()));
            const __m256i cells = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
            const __m256i moved = _mm256_permutevar8x32_epi32(cells, _mm256_cvtepu8_epi32(order));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), moved);
            to += CELL_SIZE * static_cast<std::size_t>(std::popcount(choice));
            from += VECTOR;
        }
    }
    return to;
}

} // namespace

template <std::size_t CELLS>
TESSERA_WIDE_VECTORS void NumberCompression::Compress(const RowChoice& rows)
{
    constexpr std::size_t CELL_SIZE = VECTOR / CELLS;
    constexpr std::size_t STEP = STAGE / CELL_SIZE / WORD_BITS; // words
    const std::byte* const first = from + rows.first * CELL_SIZE;
    const std::size_t whole = rows.count / WORD_BITS; // words
    const auto stage = [this](std::span<const Word> words, const std::byte* cells) {
        std::byte* const end = CompressWords<CELLS>(words, cells, staged.data() + held);
        held = static_cast<std::size_t>(end - staged.data());
        Flush();
    };
    for (std::size_t word = 0; word < whole; word += STEP) {
        stage(rows.bits.subspan(word, std::min(STEP, whole - word)), first + word * WORD_BITS * CELL_SIZE);
    }
    if (whole != rows.bits.size()) { // the last cells, behind which nothing may be read
        std::array<std::byte, WORD_BITS * CELL_SIZE> last{};
        std::memcpy(last.data(), first + whole * last.size(), rows.count % WORD_BITS * CELL_SIZE);
        stage(rows.bits.last(1), last.data());
    }
}

void NumberCompression::Flush()
{
    if (!isStreamed) {
        Write(held, false);
        return;
    }
    Write(std::min(held, -reinterpret_cast<std::uintptr_t>(to) % LINE), false); // to the start of a line
    Write(held / LINE * LINE, true);
}

void NumberCompression::Write(std::size_t count, bool past)
{
    if (past) {
        StreamBytes(to, staged.data(), count);
    } else {
        std::memcpy(to, staged.data(), count);
    }
    to += count;
    held -= count;
    std::memmove(staged.data(), staged.data() + count, held);
}

void NumberCompression::Append(const RowChoice& rows)
{
    cellSize == sizeof(std::uint64_t) ? Compress<4>(rows) : Compress<8>(rows);
}

void NumberCompression::Finish()
{
    Write(held, false);
    FinishStreaming();
}
#else
void NumberCompression::Append(const RowChoice&) {}
void NumberCompression::Finish() {}
#endif

} // namespace MERVO::Tessera::Func
