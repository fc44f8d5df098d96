#pragma once

/**
 * Functions in two versions: one for the processors that a build is for, and one for those that turn out to have wider
 * vectors and fused multiply-adds. Both give the same bits, since neither reorders operations, nor contracts them
 * unless a kernel asks for it where that is proved to alter no bit.
 *
 * A kernel that gains by it puts its loop into a [[gnu::always_inline]] function, calls that from two functions, one of
 * which is marked TESSERA_WIDE_VECTORS, and picks between these by HasWideVectors().
 */
namespace MERVO::Tessera {

#if defined(__x86_64__)
#define TESSERA_WIDE_VECTORS [[gnu::target("avx2,fma")]]
#define TESSERA_WIDE_VECTOR_BYTES 32 // defined only where there is a second version
inline bool HasWideVectors()
{
    __builtin_cpu_init(); // other libraries' start-up code may call before our own ran
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
}
#else
#define TESSERA_WIDE_VECTORS
constexpr bool HasWideVectors() { return false; }
#endif

} // namespace MERVO::Tessera
