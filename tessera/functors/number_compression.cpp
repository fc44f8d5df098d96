#include "tessera/functors/number_compression.h"

#include "tessera/platform/streaming_store.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <immintrin.h>
#include <utility>
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

/// Further bytes of a sequence on their way to it.
class Stage {
public:
    static constexpr std::size_t BYTES = 4096; ///< at home in the first-level cache

    explicit Stage(ByteSequence& destination) : sequence(destination), held(destination.waitingCount)
    {
        std::memcpy(staged.data(), sequence.waiting.data(), ByteSequence::LINE);
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage()
    {
        sequence.waitingCount = held;
        std::memcpy(sequence.waiting.data(), staged.data(), ByteSequence::LINE);
    }

    /// Room for BYTES, and a vector behind them.
    std::byte* Room() { return staged.data() + held; }
    void FilledTo(const std::byte* end)
    {
        held = static_cast<std::size_t>(end - staged.data());
        if (!sequence.isStreamed) {
            Write(held);
            return;
        }
        const std::size_t lead = -reinterpret_cast<std::uintptr_t>(sequence.to) % ByteSequence::LINE;
        if (lead != 0) [[unlikely]] { // of the first bytes only
            const std::size_t count = std::min(held, lead);
            Write(count);
            std::memmove(staged.data(), staged.data() + count, held);
        }
        const std::size_t lines = held / ByteSequence::LINE * ByteSequence::LINE;
        if (lines != 0) {
            StreamBytes(sequence.to, staged.data(), lines);
            sequence.to += lines;
            held -= lines;
            std::memcpy(staged.data(), staged.data() + lines, ByteSequence::LINE);
        }
    }

private:
    void Write(std::size_t count)
    {
        std::memcpy(sequence.to, staged.data(), count);
        sequence.to += count;
        held -= count;
    }

    ByteSequence& sequence;
    std::size_t held;
    alignas(ByteSequence::LINE) std::array<std::byte, BYTES + ByteSequence::LINE + VECTOR> staged;
};

/// Copies the chosen ones of rows, the first of which stands at `from`.
template <std::size_t CELLS>
void Compress(const RowChoice& rows, const std::byte* from, ByteSequence& to)
{
    constexpr std::size_t WORD_BYTES = WORD_BITS * (VECTOR / CELLS); // of the cells that a word tells of
    constexpr std::size_t STEP = Stage::BYTES / WORD_BYTES;          // words
    Stage stage(to);
    const std::size_t whole = rows.count / WORD_BITS; // words
    for (std::size_t word = 0; word < whole; word += STEP) {
        const auto words = rows.bits.subspan(word, std::min(STEP, whole - word));
        stage.FilledTo(CompressWords<CELLS>(words, from + word * WORD_BYTES, stage.Room()));
    }
    if (whole != rows.bits.size()) { // the last cells, behind which nothing may be read
        std::array<std::byte, WORD_BYTES> last{};
        std::memcpy(last.data(), from + whole * WORD_BYTES, rows.count % WORD_BITS * (VECTOR / CELLS));
        stage.FilledTo(CompressWords<CELLS>(rows.bits.last(1), last.data(), stage.Room()));
    }
}

} // namespace

void NumberCompression::Append(const RowChoice& rows)
{
    const auto compress = cellSize == sizeof(std::uint64_t) ? &Compress<4> : &Compress<8>;
    compress(rows, from + rows.first * cellSize, written);
}

void NumberCompression::Finish()
{
    if (written.isStreamed) {
        std::memcpy(written.to, written.waiting.data(), std::exchange(written.waitingCount, 0));
        FinishStreaming();
    }
}
#else
void NumberCompression::Append(const RowChoice&) {}
void NumberCompression::Finish() {}
#endif

} // namespace MERVO::Tessera::Func
