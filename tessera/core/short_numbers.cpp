#include "tessera/core/short_numbers.h"

#include "tessera/platform/multiversion.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <cstring>
#include <immintrin.h>

#include "tessera/core/digit_chunk.h"
#endif

namespace MERVO::Tessera {

#ifdef TESSERA_WIDE_VECTOR_BYTES
namespace {

constexpr std::size_t FOUR = TESSERA_WIDE_VECTOR_BYTES / DIGIT_CHUNK;

/// The first eight characters of a text, whatever stands behind its own ones.
std::int64_t ReadChunk(const std::string& text)
{
    std::int64_t characters = 0;
    std::memcpy(&characters, text.data(), sizeof characters);
    return characters;
}

std::int64_t SizeOf(const std::string& text) { return static_cast<std::int64_t>(text.size()); }

/// Whether four texts have 1 to 8 characters and room for 8.
bool AreShort(const std::string* texts)
{
    std::size_t sizes = 0;
    bool haveRoom = true;
    for (std::size_t i = 0; i < FOUR; ++i) {
        sizes |= texts[i].size() - 1;
        haveRoom = haveRoom && texts[i].capacity() >= DIGIT_CHUNK;
    }
    return haveRoom && sizes < DIGIT_CHUNK;
}

/// Joins the digits of each text as JoinDigits does. False, and nothing is written, if there is any other character but a
/// '-' in front.
TESSERA_WIDE_VECTORS bool ParseFour(const std::string* texts, std::int32_t* values)
{
    const __m256i characters =
        _mm256_set_epi64x(ReadChunk(texts[3]), ReadChunk(texts[2]), ReadChunk(texts[1]), ReadChunk(texts[0]));
    const __m256i sizes = _mm256_set_epi64x(SizeOf(texts[3]), SizeOf(texts[2]), SizeOf(texts[1]), SizeOf(texts[0]));

    const __m256i first = _mm256_and_si256(characters, _mm256_set1_epi64x(0xFF));
    const __m256i isNegative = _mm256_cmpeq_epi64(first, _mm256_set1_epi64x('-'));
    const __m256i zeroForSign = _mm256_and_si256(isNegative, _mm256_set1_epi64x('-' ^ '0'));
    const __m256i allDigits = _mm256_xor_si256(_mm256_xor_si256(characters, zeroForSign), _mm256_set1_epi8('0'));
    const __m256i missing = _mm256_sub_epi64(_mm256_set1_epi64x(64), _mm256_slli_epi64(sizes, 3)); // bits
    const __m256i digits = _mm256_sllv_epi64(allDigits, missing);                                  // zeros in front

    const __m256i beyondNine = _mm256_subs_epu8(digits, _mm256_set1_epi8(9));
    if (_mm256_testz_si256(beyondNine, beyondNine) == 0) {
        return false;
    }
    const __m256i pairs = _mm256_maddubs_epi16(digits, _mm256_set1_epi16(1 << 8 | 10));
    const __m256i fours = _mm256_madd_epi16(pairs, _mm256_set1_epi32(1 << 16 | 100));
    const __m256i eights =
        _mm256_add_epi64(_mm256_mul_epu32(fours, _mm256_set1_epi64x(10000)), _mm256_srli_epi64(fours, 32));
    const __m256i numbers = _mm256_sub_epi32(_mm256_xor_si256(eights, isNegative), isNegative);
    const __m256i lowHalves = _mm256_permutevar8x32_epi32(numbers, _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(values), _mm256_castsi256_si128(lowHalves));
    return true;
}

TESSERA_WIDE_VECTORS std::size_t ParseFours(const std::string* texts, std::size_t count, std::int32_t* values)
{
    std::size_t parsed = 0;
    while (count - parsed >= FOUR && AreShort(texts + parsed) && ParseFour(texts + parsed, values + parsed)) {
        parsed += FOUR;
    }
    return parsed;
}

} // namespace

std::size_t ParseShortIntegers(const std::string* texts, std::size_t count, std::int32_t* values)
{
    return HasWideVectors() ? ParseFours(texts, count, values) : 0;
}
#else
std::size_t ParseShortIntegers(const std::string*, std::size_t, std::int32_t*) { return 0; }
#endif

} // namespace MERVO::Tessera
