#include "tessera/core/short_numbers.h"

#include "tessera/platform/multiversion.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <bit>
#include <cstring>
#include <immintrin.h>

#include "tessera/core/digit_chunk.h"
#endif

namespace MERVO::Tessera {

namespace {

#ifdef TESSERA_WIDE_VECTOR_BYTES
constexpr std::size_t FOUR = TESSERA_WIDE_VECTOR_BYTES / DIGIT_CHUNK;
constexpr std::size_t DECIMAL_CHARACTERS = 15;

/// Whether so many characters can be read from a text's begin on.
bool CanRead(const std::string& text, std::size_t count) { return text.capacity() >= count; }
bool CanRead(std::string_view, std::size_t count) { return count <= SHORT_NUMBER_GUARD; }

/// The first eight characters of a text, whatever stands behind its own ones.
std::int64_t ReadChunk(std::string_view text)
{
    std::int64_t characters = 0;
    std::memcpy(&characters, text.data(), sizeof characters);
    return characters;
}

std::int64_t SizeOf(std::string_view text) { return static_cast<std::int64_t>(text.size()); }

/// Whether four texts have 1 to 8 characters, and 8 can be read.
template <typename Text>
bool AreShort(const Text* texts)
{
    std::size_t sizes = 0;
    bool areReadable = true;
    for (std::size_t i = 0; i < FOUR; ++i) {
        sizes |= texts[i].size() - 1;
        areReadable = areReadable && CanRead(texts[i], DIGIT_CHUNK);
    }
    return areReadable && sizes < DIGIT_CHUNK;
}

/// Joins the digits of each text as JoinDigits does. False, and nothing is written, if there is any other character but
/// a '-' in front.
template <typename Text>
TESSERA_WIDE_VECTORS bool ParseFour(const Text* texts, std::int32_t* values)
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

/// The digits of a number before and behind its point, as if there were eight of them on either side.
struct Decimal {
    __m128i parts; ///< the two as numbers, in the first elements of 32 bits
    bool isNegative;
    bool isShort;
};

/// Takes a number with 1 to 7 digits before the point and 1 to 8 behind it apart. All characters are moved at once to
/// where eight digits before and eight behind the point would stand.
template <typename Text>
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline Decimal TakeApart(const Text& text)
{
    const std::size_t size = text.size();
    if (size > DECIMAL_CHARACTERS || !CanRead(text, DECIMAL_CHARACTERS)) {
        return {_mm_setzero_si128(), false, false};
    }
    const __m128i places = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data()));
    const __m128i isOwn = _mm_cmpgt_epi8(_mm_set1_epi8(static_cast<char>(size)), places);
    const __m128i isPoint = _mm_and_si128(_mm_cmpeq_epi8(characters, _mm_set1_epi8('.')), isOwn);
    const auto points = static_cast<unsigned int>(_mm_movemask_epi8(isPoint));
    const bool isNegative = *text.data() == '-'; // of an empty text, too
    const std::size_t point = static_cast<std::size_t>(std::countr_zero(points | 1U << DECIMAL_CHARACTERS));

    const __m128i isSign = _mm_cmpgt_epi8(_mm_set1_epi8(isNegative ? 1 : 0), places);
    const __m128i isDigit = _mm_andnot_si128(_mm_or_si128(isPoint, isSign), isOwn);
    const __m128i digits = _mm_and_si128(_mm_xor_si128(characters, _mm_set1_epi8('0')), isDigit);
    const __m128i aroundPoint = _mm_setr_epi8(-8, -7, -6, -5, -4, -3, -2, -1, 1, 2, 3, 4, 5, 6, 7, 8);
    const __m128i moved = _mm_shuffle_epi8(digits, _mm_add_epi8(aroundPoint, _mm_set1_epi8(static_cast<char>(point))));

    const __m128i beyondNine = _mm_subs_epu8(digits, _mm_set1_epi8(9));
    const std::size_t before = point - (isNegative ? 1 : 0);
    const bool isShort = before - 1 < 7 && size - point - 2 < DIGIT_CHUNK && (points & (points - 1)) == 0 &&
        _mm_testz_si128(beyondNine, beyondNine) != 0;
    const __m128i pairs = _mm_maddubs_epi16(moved, _mm_set1_epi16(1 << 8 | 10));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
    const __m128i packed = _mm_packus_epi32(fours, fours);
    return {_mm_madd_epi16(packed, _mm_set1_epi32(1 << 16 | 10000)), isNegative, isShort};
}

/// The numbers that parts of numbers make: digits without the point are an exact number, which is divided once. False,
/// and nothing is written, if one of them is no short decimal.
template <typename Text>
TESSERA_WIDE_VECTORS bool ParseFour(const Text* texts, double* values)
{
    const Decimal a = TakeApart(texts[0]);
    const Decimal b = TakeApart(texts[1]);
    const Decimal c = TakeApart(texts[2]);
    const Decimal d = TakeApart(texts[3]);
    if (!(a.isShort && b.isShort && c.isShort && d.isShort)) {
        return false;
    }
    const __m128i ab = _mm_unpacklo_epi32(a.parts, b.parts);
    const __m128i cd = _mm_unpacklo_epi32(c.parts, d.parts);
    const __m256d before = _mm256_cvtepi32_pd(_mm_unpacklo_epi64(ab, cd));
    const __m256d behind = _mm256_cvtepi32_pd(_mm_unpackhi_epi64(ab, cd));
    const __m256d scale = _mm256_set1_pd(1e8);
    const __m256d magnitudes = _mm256_div_pd(_mm256_add_pd(_mm256_mul_pd(before, scale), behind), scale);
    const auto sign = [](const Decimal& number) { return number.isNegative ? -0.0 : 0.0; };
    _mm256_storeu_pd(values, _mm256_xor_pd(magnitudes, _mm256_set_pd(sign(d), sign(c), sign(b), sign(a))));
    return true;
}

template <typename Text>
TESSERA_WIDE_VECTORS std::size_t ParseFours(const Text* texts, std::size_t count, double* values)
{
    std::size_t parsed = 0;
    while (count - parsed >= FOUR && ParseFour(texts + parsed, values + parsed)) {
        parsed += FOUR;
    }
    return parsed;
}

template <typename Text>
TESSERA_WIDE_VECTORS std::size_t ParseFours(const Text* texts, std::size_t count, std::int32_t* values)
{
    std::size_t parsed = 0;
    while (count - parsed >= FOUR && AreShort(texts + parsed) && ParseFour(texts + parsed, values + parsed)) {
        parsed += FOUR;
    }
    return parsed;
}

template <typename Text, typename T>
std::size_t ParseMany(const Text* texts, std::size_t count, T* values)
{
    return HasWideVectors() ? ParseFours(texts, count, values) : 0;
}
#else
template <typename Text, typename T>
std::size_t ParseMany(const Text*, std::size_t, T*)
{
    return 0;
}
#endif

} // namespace

std::size_t ParseShortIntegers(const std::string* texts, std::size_t count, std::int32_t* values)
{
    return ParseMany(texts, count, values);
}

std::size_t ParseShortIntegers(const std::string_view* texts, std::size_t count, std::int32_t* values)
{
    return ParseMany(texts, count, values);
}

std::size_t ParseShortDecimals(const std::string* texts, std::size_t count, double* values)
{
    return ParseMany(texts, count, values);
}

std::size_t ParseShortDecimals(const std::string_view* texts, std::size_t count, double* values)
{
    return ParseMany(texts, count, values);
}

} // namespace MERVO::Tessera
