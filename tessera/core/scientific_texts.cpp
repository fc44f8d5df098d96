#include "tessera/core/wide_number_texts.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <bit>

#include "tessera/core/double_bits.h"
#include "tessera/core/powers_of_ten.h"

namespace MERVO::Tessera {
namespace {

constexpr std::size_t FOUR = TESSERA_WIDE_VECTOR_BYTES / sizeof(double);

// Numbers whose exponents have two digits, even if they are rounded up to a power of ten.
constexpr int LOWEST_BINARY = -328;
constexpr int HIGHEST_BINARY = 325;
constexpr int LOWEST_DECIMAL = FloorLog10OfPowerOfTwo(LOWEST_BINARY);
constexpr int HIGHEST_DECIMAL = FloorLog10OfPowerOfTwo(HIGHEST_BINARY) + 1;
static_assert(LOWEST_DECIMAL == -99 && HIGHEST_DECIMAL == 98);
constexpr int SCALED_DIGITS = 5; // behind the point of a number that is scaled to a whole one of six digits

/// 10^d as the sum of two doubles, below the truth by less than 2^-62 of it.
struct alignas(16) SplitPower {
    double high;
    double low;
};

/// 2^exponent; exponents are those of normal numbers.
constexpr double PowerOfTwo(int exponent)
{
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + DoubleBits::BIAS) << DoubleBits::MANTISSA);
}

constexpr SplitPower Split(int decimal)
{
    constexpr std::uint64_t REST = (std::uint64_t{1} << (63 - DoubleBits::MANTISSA)) - 1;
    const std::uint64_t significand = PowersOfTen::Significand(decimal);
    const double unit = PowerOfTwo(FloorLog2OfPowerOfTen(decimal) - 63);
    return {static_cast<double>(significand & ~REST) * unit, static_cast<double>(significand & REST) * unit};
}

constexpr int LOWEST_POWER = LOWEST_DECIMAL;
constexpr int HIGHEST_POWER = SCALED_DIGITS - LOWEST_DECIMAL;
constexpr auto POWERS = [] {
    std::array<SplitPower, HIGHEST_POWER - LOWEST_POWER + 1> powers = {};
    for (int decimal = LOWEST_POWER; decimal <= HIGHEST_POWER; ++decimal) {
        powers[static_cast<std::size_t>(decimal - LOWEST_POWER)] = Split(decimal);
    }
    return powers;
}();

struct FourPowers {
    __m256d high;
    __m256d low;
};

/// The powers of ten with four exponents, which are 64-bit integers counted from LOWEST_POWER.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline FourPowers LoadPowers(__m256i places)
{
    const auto load = [](long long place) { return _mm_load_pd(&POWERS[static_cast<std::size_t>(place)].high); };
    const __m128i lowPlaces = _mm256_castsi256_si128(places);
    const __m128i highPlaces = _mm256_extracti128_si256(places, 1);
    const __m256d even = _mm256_set_m128d(load(_mm_cvtsi128_si64(highPlaces)), load(_mm_cvtsi128_si64(lowPlaces)));
    const __m256d odd = _mm256_set_m128d(load(_mm_extract_epi64(highPlaces, 1)), load(_mm_extract_epi64(lowPlaces, 1)));
    return {_mm256_unpacklo_pd(even, odd), _mm256_unpackhi_pd(even, odd)};
}

/// Four magnitudes as digits * 10^(exponent - SCALED_DIGITS), with six digits each.
struct FourScaled {
    __m256d digits;
    __m256i places;    ///< exponents, counted from LOWEST_POWER
    __m256d isSettled; ///< whether they are right: there are numbers too large, too small or too near to a tie
};

/// Scales by a product of twice the precision, whose error is far below what decides how to round.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline FourScaled ScaleFour(__m256d magnitudes)
{
    constexpr double DOUBT = 0x1p-40; // of the seventh digit; the error is below 10^6 * 2^-61
    constexpr double HALF = 0.5;
    const __m256d lowest = _mm256_set1_pd(PowerOfTwo(LOWEST_BINARY));
    const __m256d beyond = _mm256_set1_pd(PowerOfTwo(HIGHEST_BINARY + 1));
    const __m256d isInRange =
        _mm256_and_pd(_mm256_cmp_pd(magnitudes, lowest, _CMP_GE_OQ), _mm256_cmp_pd(magnitudes, beyond, _CMP_LT_OQ));
    const __m256d values = _mm256_blendv_pd(lowest, magnitudes, isInRange);

    // FloorLog10OfPowerOfTwo of the exponents, made positive beforehand.
    constexpr long long LOG_UNIT = 1LL << 18;
    constexpr long long LOG_OF_TWO = 78913;
    constexpr long long ORIGIN = -LOWEST_POWER * LOG_UNIT - DoubleBits::BIAS * LOG_OF_TWO;
    const __m256i biased = _mm256_srli_epi64(_mm256_castpd_si256(values), DoubleBits::MANTISSA);
    const __m256i logs = _mm256_mul_epu32(biased, _mm256_set1_epi64x(LOG_OF_TWO));
    const __m256i guesses = _mm256_srli_epi64(_mm256_add_epi64(logs, _mm256_set1_epi64x(ORIGIN)), 18);

    // A number next to a power of ten becomes that power from either side.
    const FourPowers nexts = LoadPowers(_mm256_add_epi64(guesses, _mm256_set1_epi64x(1)));
    const __m256i isNext = _mm256_castpd_si256(_mm256_cmp_pd(values, nexts.high, _CMP_GE_OQ));
    const __m256i places = _mm256_sub_epi64(guesses, isNext);
    const FourPowers scales =
        LoadPowers(_mm256_sub_epi64(_mm256_set1_epi64x(SCALED_DIGITS - 2 * LOWEST_POWER), places));

    const __m256d products = _mm256_mul_pd(values, scales.high);
    const __m256d lost = _mm256_fmadd_pd(values, scales.low, _mm256_fmsub_pd(values, scales.high, products));
    const __m256d nearest = _mm256_round_pd(products, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    const __m256d rest = _mm256_add_pd(_mm256_sub_pd(products, nearest), lost);
    const __m256d one = _mm256_set1_pd(1.0);
    const __m256d up = _mm256_and_pd(_mm256_cmp_pd(rest, _mm256_set1_pd(HALF), _CMP_GT_OQ), one);
    const __m256d down = _mm256_and_pd(_mm256_cmp_pd(rest, _mm256_set1_pd(-HALF), _CMP_LT_OQ), one);
    const __m256d rounded = _mm256_sub_pd(_mm256_add_pd(nearest, up), down);

    const __m256d fromTie = _mm256_sub_pd(_mm256_andnot_pd(_mm256_set1_pd(-0.0), rest), _mm256_set1_pd(HALF));
    const __m256d isClear =
        _mm256_cmp_pd(_mm256_andnot_pd(_mm256_set1_pd(-0.0), fromTie), _mm256_set1_pd(DOUBT), _CMP_GT_OQ);
    const __m256d isPower = _mm256_cmp_pd(rounded, _mm256_set1_pd(1e6), _CMP_GE_OQ);
    return {_mm256_blendv_pd(rounded, _mm256_set1_pd(1e5), isPower),
        _mm256_sub_epi64(places, _mm256_castpd_si256(isPower)), _mm256_and_pd(isInRange, isClear)};
}

/// The digits' values of each number in the bytes of 64 bits: six of the number, two of its exponent.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256i SplitFour(__m256d digits, __m256i exponents)
{
    // Quotients are products with a reciprocal that is exact for so few digits.
    const __m256i numbers = _mm256_cvtepu32_epi64(_mm256_cvtpd_epi32(digits));
    const __m256i first = _mm256_srli_epi64(_mm256_mul_epu32(numbers, _mm256_set1_epi64x(109951163)), 40);
    const __m256i four = _mm256_sub_epi64(numbers, _mm256_mul_epu32(first, _mm256_set1_epi64x(10000)));
    const __m256i second = _mm256_srli_epi64(_mm256_mul_epu32(four, _mm256_set1_epi64x(5243)), 19);
    const __m256i third = _mm256_sub_epi64(four, _mm256_mul_epu32(second, _mm256_set1_epi64x(100)));
    const __m256i pairs = _mm256_or_si256(_mm256_or_si256(first, _mm256_slli_epi64(second, 16)),
        _mm256_or_si256(_mm256_slli_epi64(third, 32), _mm256_slli_epi64(exponents, 48)));
    return SplitPairs(pairs);
}

/// Makes two texts of what PAIR names in each of the vectors: twice two numbers of 64 bits, 0x50 the first ones.
template <int PAIR>
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline void StoreTwo(
    __m256i digits, __m256i isSmall, __m256i isNegative, NumberText* texts)
{
    const __m256i places = Both(_mm_setr_epi8(0, -1, 1, 2, 3, 4, 5, -1, -1, 6, 7, -1, -1, -1, -1, -1));
    const __m256i frame = Both(_mm_setr_epi8('0', '.', '0', '0', '0', '0', '0', 'e', '+', '0', '0', 0, 0, 0, 0, 0));
    const __m256i toMinus = Both(_mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, '+' ^ '-', 0, 0, 0, 0, 0, 0, 0));
    const __m256i inOrder = Both(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
    const __m256i size = Both(_mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 11));
    const __m256i signAndSize = Both(_mm_setr_epi8('-', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 12));

    const __m256i spread = _mm256_shuffle_epi8(_mm256_permute4x64_epi64(digits, PAIR), places);
    const __m256i exponentSign = _mm256_and_si256(_mm256_permute4x64_epi64(isSmall, PAIR), toMinus);
    const __m256i withoutSign = _mm256_xor_si256(_mm256_or_si256(spread, frame), exponentSign);
    const __m256i sign = _mm256_permute4x64_epi64(isNegative, PAIR);
    const __m256i moved = _mm256_shuffle_epi8(withoutSign, _mm256_add_epi8(inOrder, sign)); // by one behind a sign
    const __m256i ends = _mm256_blendv_epi8(size, signAndSize, sign);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(texts), _mm256_or_si256(moved, ends));
}

TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256d LoadFour(const double* values)
{
    return _mm256_loadu_pd(values);
}

TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256d LoadFour(const float* values)
{
    return _mm256_cvtps_pd(_mm_loadu_ps(values));
}

/// Writes four texts. The bits of the result tell which of them are yet to be written.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline unsigned int WriteFour(__m256d values, NumberText* texts)
{
    const __m256i zero = _mm256_setzero_si256();
    const FourScaled scaled = ScaleFour(_mm256_andnot_pd(_mm256_set1_pd(-0.0), values));
    const __m256i exponents = _mm256_add_epi64(scaled.places, _mm256_set1_epi64x(LOWEST_POWER));
    const __m256i isSmall = _mm256_cmpgt_epi64(zero, exponents);
    const __m256i magnitudes = _mm256_sub_epi64(_mm256_xor_si256(exponents, isSmall), isSmall);
    const __m256i digits = SplitFour(scaled.digits, magnitudes);
    const __m256i isNegative = _mm256_cmpgt_epi64(zero, _mm256_castpd_si256(values));
    StoreTwo<0x50>(digits, isSmall, isNegative, texts);
    StoreTwo<0xFA>(digits, isSmall, isNegative, texts + FOUR / 2);
    return static_cast<unsigned int>(_mm256_movemask_pd(scaled.isSettled)) ^ 0xF;
}

template <typename T>
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline std::size_t WriteEachFour(
    const T* values, std::size_t count, NumberText* texts)
{
    std::size_t i = 0;
    for (; count - i >= FOUR; i += FOUR) {
        for (unsigned int rest = WriteFour(LoadFour(values + i), texts + i); rest != 0; rest &= rest - 1) {
            const std::size_t k = i + static_cast<std::size_t>(std::countr_zero(rest));
            char* const first = texts[k].characters.data();
            texts[k].size = static_cast<std::uint8_t>(WriteScientific(first, double{values[k]}) - first);
        }
    }
    return i;
}

} // namespace

TESSERA_WIDE_VECTORS std::size_t WriteFours(const double* values, std::size_t count, NumberText* texts)
{
    return WriteEachFour(values, count, texts);
}

TESSERA_WIDE_VECTORS std::size_t WriteFours(const float* values, std::size_t count, NumberText* texts)
{
    return WriteEachFour(values, count, texts);
}

} // namespace MERVO::Tessera
#endif
