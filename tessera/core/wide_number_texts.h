#pragma once

#include "tessera/core/number_texts.h"
#include "tessera/platform/multiversion.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <immintrin.h>
#endif

/// Texts of several numbers at once.
namespace MERVO::Tessera {

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// Write the texts of numbers four at a time, as far as there are four; return how many.
TESSERA_WIDE_VECTORS std::size_t WriteFours(const std::int32_t* values, std::size_t count, NumberText* texts);
TESSERA_WIDE_VECTORS std::size_t WriteFours(const std::uint32_t* values, std::size_t count, NumberText* texts);
TESSERA_WIDE_VECTORS std::size_t WriteFours(const double* values, std::size_t count, NumberText* texts);
TESSERA_WIDE_VECTORS std::size_t WriteFours(const float* values, std::size_t count, NumberText* texts);

/// The values of two digits each, the first one first, for numbers of 16 bits below 100.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256i SplitPairs(__m256i pairs)
{
    const __m256i tens = _mm256_srli_epi16(_mm256_mullo_epi16(pairs, _mm256_set1_epi16(103)), 10);
    const __m256i ones = _mm256_sub_epi16(pairs, _mm256_mullo_epi16(tens, _mm256_set1_epi16(10)));
    return _mm256_or_si256(tens, _mm256_slli_epi16(ones, 8));
}

/// The same sixteen bytes twice.
TESSERA_WIDE_VECTORS [[gnu::always_inline]] inline __m256i Both(__m128i half)
{
    return _mm256_broadcastsi128_si256(half);
}

#else
template <typename T>
std::size_t WriteFours(const T*, std::size_t, NumberText*)
{
    return 0;
}
#endif

} // namespace MERVO::Tessera
