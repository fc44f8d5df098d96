#include "tessera/platform/streaming_store.h"

#ifdef TESSERA_WIDE_VECTOR_BYTES
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace MERVO::Tessera {

TESSERA_WIDE_VECTORS void StreamBytes(std::byte* to, const std::byte* from, std::size_t count)
{
    constexpr std::size_t LINE = 64;
    if (reinterpret_cast<std::uintptr_t>(to) % LINE == 0) {
        for (; count >= LINE; count -= LINE, to += LINE, from += LINE) {
            const auto* halves = reinterpret_cast<const __m256i*>(from);
            _mm256_stream_si256(reinterpret_cast<__m256i*>(to), _mm256_loadu_si256(halves));
            _mm256_stream_si256(reinterpret_cast<__m256i*>(to) + 1, _mm256_loadu_si256(halves + 1));
        }
    }
    std::memcpy(to, from, count);
}

void FinishStreaming() { _mm_sfence(); }

} // namespace MERVO::Tessera
#endif
