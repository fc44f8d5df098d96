#include "tessera/core/wide_number_texts.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
namespace MERVO::Tessera {
namespace {

constexpr std::size_t FOUR = TESSERA_WIDE_VECTOR_BYTES / sizeof(std::int64_t);
constexpr std::size_t CHARACTERS = sizeof(NumberText);

/// How many digits each of four numbers has, which are below 2^32.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256i CountDigits(__m256i numbers)
{
    __m256i count = _mm256_set1_epi64x(1);
#pragma GCC unroll 9
    for (long long power = 10; power <= 1000000000; power *= 10) {
        count = _mm256_sub_epi64(count, _mm256_cmpgt_epi64(numbers, _mm256_set1_epi64x(power - 1)));
    }
    return count;
}

/// Pairs of digits of four numbers: eight digits in 64 bits, and those before them.
struct FourPairs {
    __m256i leading; ///< below 43
    __m256i pairs;   ///< of 16 bits each
};

TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline FourPairs SplitFour(__m256i numbers)
{
    // Quotients are products with a reciprocal that is exact for so few digits.
    const __m256i leading = _mm256_srli_epi64(_mm256_mul_epu32(numbers, _mm256_set1_epi64x(1441151881)), 57);
    const __m256i eight = _mm256_sub_epi64(numbers, _mm256_mul_epu32(leading, _mm256_set1_epi64x(100000000)));
    const __m256i first = _mm256_srli_epi64(_mm256_mul_epu32(eight, _mm256_set1_epi64x(3518437209)), 45);
    const __m256i last = _mm256_sub_epi64(eight, _mm256_mul_epu32(first, _mm256_set1_epi64x(10000)));
    const __m256i fours = _mm256_or_si256(first, _mm256_slli_epi64(last, 32));
    const __m256i hundreds = _mm256_srli_epi16(_mm256_mulhi_epu16(fours, _mm256_set1_epi16(5243)), 3);
    const __m256i rest = _mm256_sub_epi16(fours, _mm256_mullo_epi16(hundreds, _mm256_set1_epi16(100)));
    return {leading, _mm256_or_si256(hundreds, _mm256_slli_epi32(rest, 16))};
}

/// Makes the texts of two numbers. `pairs` has their digits at its halves' ends, `starts` and `isNegative` what byte
/// PLACE of either half says: where the text begins there, its sign among it, and whether it has one.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256i MakeTwo(
    __m256i pairs, __m256i starts, __m256i isNegative, __m256i place)
{
    const __m256i inOrder = Both(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
    const __m256i isFirst = Both(_mm_setr_epi8(-1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i isLast = Both(_mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1));
    const __m256i characters = _mm256_or_si256(SplitPairs(pairs), _mm256_set1_epi8('0'));
    const __m256i start = _mm256_shuffle_epi8(starts, place);
    const __m256i moved = _mm256_shuffle_epi8(characters, _mm256_add_epi8(inOrder, start));
    const __m256i isSign = _mm256_and_si256(_mm256_shuffle_epi8(isNegative, place), isFirst);
    const __m256i size = _mm256_sub_epi8(_mm256_set1_epi8(CHARACTERS), start);
    return _mm256_blendv_epi8(_mm256_blendv_epi8(moved, _mm256_set1_epi8('-'), isSign), size, isLast);
}

/// Writes the texts of four numbers, given in 64 bits, with the signs apart.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline void WriteFour(
    __m256i magnitudes, __m256i isNegative, NumberText* texts)
{
    const __m256i sizes = _mm256_sub_epi64(CountDigits(magnitudes), isNegative);
    const __m256i starts = _mm256_sub_epi64(_mm256_set1_epi64x(CHARACTERS), sizes);
    const FourPairs split = SplitFour(magnitudes);
    const __m256i leading = _mm256_slli_epi64(split.leading, 48);
    const __m256i even =
        MakeTwo(_mm256_unpacklo_epi64(leading, split.pairs), starts, isNegative, _mm256_setzero_si256());
    const __m256i odd = MakeTwo(_mm256_unpackhi_epi64(leading, split.pairs), starts, isNegative, _mm256_set1_epi8(8));
    auto* const to = reinterpret_cast<__m256i*>(texts);
    _mm256_storeu_si256(to, _mm256_permute2x128_si256(even, odd, 0x20));
    _mm256_storeu_si256(to + 1, _mm256_permute2x128_si256(even, odd, 0x31));
}

TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline void WriteFour(const std::uint32_t* values, NumberText* texts)
{
    const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
    WriteFour(_mm256_cvtepu32_epi64(four), _mm256_setzero_si256(), texts);
}

TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline void WriteFour(const std::int32_t* values, NumberText* texts)
{
    const __m256i four = _mm256_cvtepi32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(values)));
    const __m256i isNegative = _mm256_cmpgt_epi64(_mm256_setzero_si256(), four);
    WriteFour(_mm256_sub_epi64(_mm256_xor_si256(four, isNegative), isNegative), isNegative, texts);
}

template <typename T>
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline std::size_t WriteEachFour(
    const T* values, std::size_t count, NumberText* texts)
{
    std::size_t i = 0;
    for (; count - i >= FOUR; i += FOUR) {
        WriteFour(values + i, texts + i);
    }
    return i;
}

} // namespace

TESSERA_WIDE_VECTORS std::size_t WriteFours(const std::int32_t* values, std::size_t count, NumberText* texts)
{
    return WriteEachFour(values, count, texts);
}

TESSERA_WIDE_VECTORS std::size_t WriteFours(const std::uint32_t* values, std::size_t count, NumberText* texts)
{
    return WriteEachFour(values, count, texts);
}

} // namespace MERVO::Tessera
#endif
